#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace korvel::db {

/// Room for the digits of any number.
using NumberText = std::array<char, 32>;

/// The text of a floating number, the same for every engine. Whole numbers and common fractions in plain digits, very
/// large and very small ones with an exponent; always the shortest text that reads back as the same number. Gives the
/// number of characters written.
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

}  // namespace korvel::db
