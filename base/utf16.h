#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// The one place where UTF-8 becomes UTF-16 and back. Texts are UTF-8 everywhere else; drivers, the settings file and
// the calls of Windows take UTF-16. What is malformed becomes U+FFFD, except where a function says otherwise.

[[nodiscard]] constexpr bool isHighSurrogate(char16_t unit) noexcept {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
[[nodiscard]] constexpr bool isLowSurrogate(char16_t unit) noexcept {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

[[nodiscard]] std::u16string utf16FromUtf8(std::string_view utf8);
[[nodiscard]] std::string utf8FromUtf16(std::u16string_view utf16);
/// How many units utf16FromUtf8 makes of `utf8`.
[[nodiscard]] std::size_t utf16Length(std::string_view utf8) noexcept;

inline constexpr std::size_t maxUtf8BytesPerUnit = 3;
/// Writes UTF-16 as UTF-8 to `out`, which has room for maxUtf8BytesPerUnit bytes a unit, and gives the end of what was
/// written. Rows of a driver go through here.
char* writeUtf8(std::u16string_view utf16, char* out);

/// UTF-8 `text` as little-endian UTF-16 bytes without a byte order mark; nothing where `text` is not UTF-8.
[[nodiscard]] std::optional<std::string> utf16BytesFromUtf8(std::string_view text);
/// Little-endian UTF-16 `bytes` as UTF-8. An odd last byte is dropped.
[[nodiscard]] std::string utf8FromUtf16Bytes(std::string_view bytes);

}  // namespace korvel
