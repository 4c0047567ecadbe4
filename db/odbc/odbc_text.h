#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvel::db::odbc {

/// UTF-16 as the driver manager takes it; malformed UTF-8 becomes U+FFFD.
[[nodiscard]] std::u16string toUtf16(std::string_view utf8);

inline constexpr std::size_t mostUtf8BytesOfUnit = 3;
/// Writes UTF-16 as UTF-8 to `out`, which has room for mostUtf8BytesOfUnit bytes a unit, and gives the end of what was
/// written. A surrogate without its partner becomes U+FFFD.
char* writeUtf8(std::u16string_view utf16, char* out);
[[nodiscard]] std::string toUtf8(std::u16string_view utf16);

[[nodiscard]] constexpr bool isHighSurrogate(char16_t unit) noexcept {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

}  // namespace korvel::db::odbc
