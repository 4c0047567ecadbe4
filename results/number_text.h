#pragma once

#include <cstddef>
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

}  // namespace korvel::results
