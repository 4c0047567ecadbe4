#pragma once

#include <QString>
#include <string_view>

namespace korvel::output::pages {

/// Stands in shown text where a line ends by the value's own will.
inline constexpr QChar forcedBreak{QChar::LineSeparator};

/// UTF-8 `value` as it is shown on paper: control characters, characters that turn the direction of writing and bytes
/// that are no text visible as \t, \x1B, \u202E; a line break visible as well (CR LF as an arrow, else \n or \r), and a
/// new line after it.
[[nodiscard]] QString shownOnPaper(std::string_view value);

}  // namespace korvel::output::pages
