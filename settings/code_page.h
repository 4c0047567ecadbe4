#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvel::settings {

// The code page of the fixed files: the system's on Windows, windows-1252 elsewhere. Both directions keep tabs and line
// ends as they are.

/// Appends UTF-8 `text` to `bytes` in the code page. A character that the code page does not hold becomes one "?", and
/// so does each byte that is no UTF-8. Returns how many became one.
std::size_t appendInCodePage(std::string_view text, std::string& bytes);
/// The same as a text of its own.
[[nodiscard]] std::string toCodePage(std::string_view text);
/// Whether the code page holds all of `text`.
[[nodiscard]] bool fitsCodePage(std::string_view text);

/// `bytes` in the code page as UTF-8. Every byte has a character: the five that windows-1252 leaves open stand for the
/// control characters of their number, as Windows has it.
[[nodiscard]] std::string fromCodePage(std::string_view bytes);

// The platform's part: what the code page holds beyond ASCII.

/// Appends the bytes of a character beyond ASCII; false, and nothing appended, where the code page does not hold it.
[[nodiscard]] bool appendBytesOf(char32_t character, std::string& bytes);
/// The UTF-8 text of bytes.
[[nodiscard]] std::string textOfBytes(std::string_view bytes);

}  // namespace korvel::settings
