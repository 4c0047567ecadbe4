#include "db/odbc/odbc_text.h"

#include <cstdint>
#include <cstring>

#include "base/text.h"

namespace korvel::db::odbc {

namespace {

constexpr char32_t replacement = 0xFFFD;

constexpr bool isLowSurrogate(char16_t unit) noexcept {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char* writeCodePoint(char32_t codePoint, char* out) {
  const auto byte = [&](char32_t value) { *out++ = static_cast<char>(static_cast<unsigned char>(value)); };
  if (codePoint < 0x800) {
    byte(0xC0U | (codePoint >> 6U));
  } else if (codePoint < 0x10000) {
    byte(0xE0U | (codePoint >> 12U));
    byte(0x80U | ((codePoint >> 6U) & 0x3FU));
  } else {
    byte(0xF0U | (codePoint >> 18U));
    byte(0x80U | ((codePoint >> 12U) & 0x3FU));
    byte(0x80U | ((codePoint >> 6U) & 0x3FU));
  }
  byte(0x80U | (codePoint & 0x3FU));
  return out;
}

/// Four units at once, where each of them is one byte.
bool writeFourPlain(const char16_t* in, char* out) {
  std::uint64_t units = 0;
  std::memcpy(&units, in, sizeof units);
  if ((units & 0xFF80FF80FF80FF80U) != 0) return false;
  units = (units | units >> 8U) & 0x0000FFFF0000FFFFU;
  const auto bytes = static_cast<std::uint32_t>(units | units >> 16U);
  std::memcpy(out, &bytes, sizeof bytes);
  return true;
}

}  // namespace

std::u16string toUtf16(std::string_view utf8) {
  const std::string valid = replaceInvalidUtf8(utf8);
  std::u16string utf16;
  utf16.reserve(valid.size());
  for (std::size_t i = 0; i < valid.size();) {
    const auto lead = static_cast<unsigned char>(valid[i]);
    const std::size_t length = lead < 0x80 ? 1U : lead < 0xE0 ? 2U : lead < 0xF0 ? 3U : 4U;
    char32_t codePoint = length == 1 ? lead : lead & (0xFFU >> (length + 1U));
    for (std::size_t k = 1; k < length; ++k)
      codePoint = (codePoint << 6U) | (static_cast<unsigned char>(valid[i + k]) & 0x3FU);
    i += length;
    if (codePoint < 0x10000) {
      utf16.push_back(static_cast<char16_t>(codePoint));
    } else {
      utf16.push_back(static_cast<char16_t>(0xD800U + ((codePoint - 0x10000U) >> 10U)));
      utf16.push_back(static_cast<char16_t>(0xDC00U + ((codePoint - 0x10000U) & 0x3FFU)));
    }
  }
  return utf16;
}

char* writeUtf8(std::u16string_view utf16, char* out) {
  constexpr std::ptrdiff_t block = 4;
  const char16_t* in = utf16.data();
  const char16_t* const begin = in;
  const char16_t* const end = in + utf16.size();
  for (;;) {
    // Most texts are plain. Their last units are written together with some before them, once more.
    for (; end - in >= block && writeFourPlain(in, out); in += block) out += block;
    if (in == end) return out;
    const std::ptrdiff_t rest = end - in;
    if (rest < block && in - begin >= block && writeFourPlain(end - block, out - (block - rest))) return out + rest;
    const char16_t unit = *in++;
    if (unit < 0x80) {
      *out++ = static_cast<char>(unit);
    } else if (isHighSurrogate(unit) && in != end && isLowSurrogate(*in)) {
      const char32_t high = unit - 0xD800U;
      const char32_t low = *in++ - 0xDC00U;
      out = writeCodePoint(0x10000U + (high << 10U) + low, out);
    } else {
      out = writeCodePoint(isHighSurrogate(unit) || isLowSurrogate(unit) ? replacement : char32_t{unit}, out);
    }
  }
}

std::string toUtf8(std::u16string_view utf16) {
  std::string utf8(utf16.size() * mostUtf8BytesOfUnit, '\0');
  utf8.resize(static_cast<std::size_t>(writeUtf8(utf16, utf8.data()) - utf8.data()));
  return utf8;
}

}  // namespace korvel::db::odbc
