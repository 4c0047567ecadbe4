#include "base/utf16.h"

#include <cstdint>
#include <cstring>

#include "base/text.h"

namespace korvel {

namespace {

constexpr char32_t firstHigh = 0xD800;
constexpr char32_t firstLow = 0xDC00;
constexpr char32_t firstSupplementary = 0x10000;

char* writeCodePoint(char32_t codePoint, char* out) {
  const auto byte = [&](char32_t value) { *out++ = static_cast<char>(static_cast<unsigned char>(value)); };
  if (codePoint < 0x800) {
    byte(0xC0U | (codePoint >> 6U));
  } else if (codePoint < firstSupplementary) {
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

/// Writes four units at once, where all of them are ASCII.
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

std::u16string utf16FromUtf8(std::string_view utf8) {
  std::u16string utf16;
  utf16.reserve(utf8.size());
  while (!utf8.empty()) {
    const char32_t codePoint = takeCodePoint(utf8).value_or(replacementCharacter);
    if (codePoint < firstSupplementary) {
      utf16.push_back(static_cast<char16_t>(codePoint));
    } else {
      utf16.push_back(static_cast<char16_t>(firstHigh + ((codePoint - firstSupplementary) >> 10U)));
      utf16.push_back(static_cast<char16_t>(firstLow + ((codePoint - firstSupplementary) & 0x3FFU)));
    }
  }
  return utf16;
}

std::size_t utf16Length(std::string_view utf8) noexcept {
  std::size_t units = 0;
  for (std::size_t ascii = asciiPrefixLength(utf8);; ascii = asciiPrefixLength(utf8)) {
    units += ascii;
    utf8.remove_prefix(ascii);
    if (utf8.empty()) return units;
    units += takeCodePoint(utf8).value_or(replacementCharacter) < firstSupplementary ? 1U : 2U;
  }
}

char* writeUtf8(std::u16string_view utf16, char* out) {
  constexpr std::ptrdiff_t block = 4;
  const char16_t* in = utf16.data();
  const char16_t* const begin = in;
  const char16_t* const end = in + utf16.size();
  for (;;) {
    // Most texts are ASCII. Their last units are written together with some that were written before.
    for (; end - in >= block && writeFourPlain(in, out); in += block) out += block;
    if (in == end) return out;
    const std::ptrdiff_t rest = end - in;
    if (rest < block && in - begin >= block && writeFourPlain(end - block, out - (block - rest))) return out + rest;
    const char16_t unit = *in++;
    if (unit < 0x80) {
      *out++ = static_cast<char>(unit);
    } else if (isHighSurrogate(unit) && in != end && isLowSurrogate(*in)) {
      const char32_t high = unit - firstHigh;
      const char32_t low = *in++ - firstLow;
      out = writeCodePoint(firstSupplementary + (high << 10U) + low, out);
    } else {
      out = writeCodePoint(isHighSurrogate(unit) || isLowSurrogate(unit) ? replacementCharacter : char32_t{unit}, out);
    }
  }
}

std::string utf8FromUtf16(std::u16string_view utf16) {
  std::string utf8(utf16.size() * maxUtf8BytesPerUnit, '\0');
  utf8.resize(static_cast<std::size_t>(writeUtf8(utf16, utf8.data()) - utf8.data()));
  return utf8;
}

std::optional<std::string> utf16BytesFromUtf8(std::string_view text) {
  if (!isValidUtf8(text)) return std::nullopt;
  const std::u16string units = utf16FromUtf8(text);
  std::string bytes;
  bytes.reserve(units.size() * 2);
  for (const char16_t unit : units) {
    bytes.push_back(static_cast<char>(unit & 0xFFU));
    bytes.push_back(static_cast<char>(unit >> 8U));
  }
  return bytes;
}

std::string utf8FromUtf16Bytes(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2)
    units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) |
                                          static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1])) << 8U));
  return utf8FromUtf16(units);
}

}  // namespace korvel
