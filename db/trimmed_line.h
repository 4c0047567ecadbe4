#pragma once

#include <string_view>

namespace korvel::db {

/// A line, or a part of one, without the white space around it.
[[nodiscard]] constexpr std::string_view trimmedLine(std::string_view text) noexcept {
  constexpr std::string_view white = " \t\r";
  const auto first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

}  // namespace korvel::db
