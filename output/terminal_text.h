#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvel::output {

/// Appends `text` so that it stays on its line and cannot drive a terminal, whatever an audited value holds: line
/// breaks and tabs as \n, \r, \t, other control characters and bytes that are not UTF-8 as \x1B, invisible characters
/// that turn the direction of writing or break lines as \u202E. A backslash stays single: this is a form to look at,
/// not to read back.
void appendTerminalText(std::string_view text, std::string& out);
[[nodiscard]] std::string terminalText(std::string_view text);

/// Number of character cells that terminal text takes: two for wide characters, none for combining ones.
[[nodiscard]] std::size_t terminalWidth(std::string_view text) noexcept;

}  // namespace korvel::output
