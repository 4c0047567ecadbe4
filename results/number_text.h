#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace korvel::results {

/// Entry numbers are ordered as texts padded with zeros to this many digits.
inline constexpr std::size_t entryNumberDigits = 9;

[[nodiscard]] constexpr bool isAllDigits(std::string_view text) noexcept {
  if (text.empty()) return false;
  for (const char c : text)
    if (c < '0' || c > '9') return false;
  return true;
}

/// A number's text without its leading zeros ("007" is "7", "000" is "0"); any other text as it stands.
[[nodiscard]] constexpr std::string_view withoutLeadingZeros(std::string_view text) noexcept {
  if (text.size() < 2 || text.front() != '0' || !isAllDigits(text)) return text;
  const auto first = text.find_first_not_of('0');
  return first == std::string_view::npos ? text.substr(text.size() - 1) : text.substr(first);
}

/// A whole number as its text has it. Zero has no sign.
struct WholeNumber {
  bool negative = false;
  std::string_view digits;  ///< without leading zeros
};

/// The number that `text` is: digits, possibly behind a minus sign.
[[nodiscard]] constexpr std::optional<WholeNumber> wholeNumber(std::string_view text) noexcept {
  const bool signedText = text.starts_with('-');
  if (signedText) text.remove_prefix(1);
  if (!isAllDigits(text)) return std::nullopt;
  const std::string_view digits = withoutLeadingZeros(text);
  return WholeNumber{signedText && digits != "0", digits};
}

}  // namespace korvel::results
