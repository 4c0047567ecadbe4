#pragma once

#include <string>
#include <string_view>

namespace korvel::settings {

// What a code page says beyond ASCII. The platform's part of code_page.h.

/// Appends the bytes of a character beyond ASCII; false, and nothing appended, where the code page does not hold it.
[[nodiscard]] bool appendBytesOf(char32_t character, std::string& bytes);
/// The UTF-8 text of bytes.
[[nodiscard]] std::string textOfBytes(std::string_view bytes);

}  // namespace korvel::settings
