#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel::settings {

/// UTF-8 `text` as little-endian UTF-16 bytes without a byte order mark; nothing where `text` is not UTF-8.
[[nodiscard]] std::optional<std::string> utf16FromUtf8(std::string_view text);

/// Little-endian UTF-16 `bytes` as UTF-8. Lone surrogates become U+FFFD, an odd last byte is dropped.
[[nodiscard]] std::string utf8FromUtf16(std::string_view bytes);

}  // namespace korvel::settings
