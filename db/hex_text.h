#pragma once

#include <string_view>

namespace korvel::db {

/// Writes bytes as lower-case hexadecimal digits to `out`, which has room for two characters a byte; gives the end of
/// what was written. Binary values read the same whichever engine they come from.
inline char* writeHex(std::string_view bytes, char* out) noexcept {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    *out++ = digits[byte >> 4U];
    *out++ = digits[byte & 15U];
  }
  return out;
}

}  // namespace korvel::db
