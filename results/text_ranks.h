#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::results {

/// Entry numbers are ordered as texts padded with zeros to this many digits.
inline constexpr std::size_t entryNumberDigits = 9;

/// The rank of every text among all of them, without regard to case and by code point, so the same on every machine.
/// The empty text ranks 0 whether or not it occurs; the others follow without gaps; texts that differ only in case rank
/// equal.
[[nodiscard]] std::vector<std::uint32_t> rankTexts(std::vector<std::string_view> texts);

/// The same with every whole number written with at least nine digits first, so that numbers of up to nine digits order
/// by their value. All other texts, longer numbers among them, order as texts.
[[nodiscard]] std::vector<std::uint32_t> rankNumberTexts(std::vector<std::string_view> texts);

/// A whole number, signed or not, with at least nine digits; any other text as it stands.
[[nodiscard]] std::string paddedNumber(std::string_view text);

}  // namespace korvel::results
