#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace korvel {

// Numbers as text, the same on every machine whatever its locale.

[[nodiscard]] constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool isAllDigits(std::string_view text) noexcept {
  if (text.empty()) return false;
  for (const char c : text)
    if (!isDigit(c)) return false;
  return true;
}

/// The whole number that all of `text` is; nothing where it is none, or does not fit.
template <typename Integer>
[[nodiscard]] std::optional<Integer> parseInteger(std::string_view text) noexcept {
  Integer number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// A number's text without its leading zeros ("007" is "7", "000" is "0"); any other text as it stands.
[[nodiscard]] constexpr std::string_view withoutLeadingZeros(std::string_view text) noexcept {
  if (text.size() < 2 || text.front() != '0' || !isAllDigits(text)) return text;
  const auto first = text.find_first_not_of('0');
  return first == std::string_view::npos ? text.substr(text.size() - 1) : text.substr(first);
}

/// A whole number of any length as its text has it. Zero has no sign.
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

/// Room for the digits of any floating-point number.
using NumberText = std::array<char, 32>;

/// The text of a floating-point number, the same for every engine. Whole numbers and common fractions in plain digits,
/// very large and very small ones with an exponent; always the shortest text that reads back as the same number. Gives
/// the number of characters written.
template <typename Number>
[[nodiscard]] std::size_t writeNumber(Number value, NumberText& text) {
  value += Number{0};  // no "-0"
  const double size = std::fabs(static_cast<double>(value));
  constexpr double smallestPlain = 1e-5;
  constexpr double largestPlain = 1e17;
  const bool plain = size == 0.0 || (size >= smallestPlain && size < largestPlain);
  const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
  return static_cast<std::size_t>(std::to_chars(text.data(), text.data() + text.size(), value, format).ptr -
                                  text.data());
}

inline constexpr std::string_view hexDigits = "0123456789abcdef";

/// Writes bytes as lower-case hexadecimal digits to `out`, which has room for two characters a byte; gives the end of
/// what was written. Binary values read the same whichever engine they come from.
inline char* writeHex(std::string_view bytes, char* out) noexcept {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    *out++ = hexDigits[byte >> 4U];
    *out++ = hexDigits[byte & 0xFU];
  }
  return out;
}

/// Appends one byte as two lower-case hexadecimal digits.
inline void appendHex(unsigned char byte, std::string& text) {
  text.push_back(hexDigits[byte >> 4U]);
  text.push_back(hexDigits[byte & 0xFU]);
}

/// The value of a hexadecimal digit of either case; nothing for another character.
[[nodiscard]] constexpr std::optional<unsigned> hexDigitValue(char c) noexcept {
  if (isDigit(c)) return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10U;
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10U;
  return std::nullopt;
}

}  // namespace korvel
