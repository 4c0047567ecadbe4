#pragma once

#include <string>
#include <string_view>

namespace korvel::test::tds {

/// UTF-8 to little-endian UTF-16. A surrogate that stands alone, written as three bytes, is let through: a server's
/// nchar column can hold one, and a reader has to cope. Throws std::invalid_argument for anything else malformed.
[[nodiscard]] std::string toUtf16(std::string_view utf8);
/// Little-endian UTF-16 to UTF-8; a surrogate that stands alone becomes three bytes. An odd last byte is dropped.
[[nodiscard]] std::string fromUtf16(std::string_view utf16);
/// UTF-8 to a code page by iconv's name for it ("CP1252"). Throws std::invalid_argument for what it cannot hold.
[[nodiscard]] std::string toCodePage(std::string_view utf8, const std::string& codePage);

}  // namespace korvel::test::tds
