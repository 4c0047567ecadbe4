#include "settings/utf16.h"

#include <cstddef>
#include <cstdint>

#include "base/text.h"

namespace korvel::settings {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t firstHigh = 0xD800;
constexpr char32_t firstLow = 0xDC00;
constexpr char32_t afterLow = 0xE000;
constexpr char32_t firstSupplementary = 0x10000;

void appendUnit(char32_t unit, std::string& bytes) {
  bytes.push_back(static_cast<char>(unit & 0xFFU));
  bytes.push_back(static_cast<char>((unit >> 8U) & 0xFFU));
}

char32_t unitAt(std::string_view bytes, std::size_t at) {
  return static_cast<char32_t>(static_cast<unsigned char>(bytes[at])) |
         static_cast<char32_t>(static_cast<unsigned char>(bytes[at + 1])) << 8U;
}

/// The code point at the front of well-formed UTF-8, which is taken off.
char32_t takeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80U ? 1 : lead < 0xE0U ? 2 : lead < 0xF0U ? 3 : 4;
  char32_t codePoint = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) codePoint = codePoint << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
  text.remove_prefix(length);
  return codePoint;
}

void appendUtf8(char32_t codePoint, std::string& text) {
  if (codePoint < 0x80U) {
    text.push_back(static_cast<char>(codePoint));
    return;
  }
  const unsigned length = codePoint < 0x800U ? 2 : codePoint < firstSupplementary ? 3 : 4;
  const auto lead = static_cast<unsigned char>(0xF00U >> length & 0xFFU);
  text.push_back(static_cast<char>(lead | codePoint >> 6U * (length - 1)));
  for (unsigned rest = length - 1; rest > 0; --rest)
    text.push_back(static_cast<char>(0x80U | (codePoint >> 6U * (rest - 1) & 0x3FU)));
}

}  // namespace

std::optional<std::string> utf16FromUtf8(std::string_view text) {
  if (!isValidUtf8(text)) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() * 2);
  while (!text.empty()) {
    const char32_t codePoint = takeCodePoint(text);
    if (codePoint < firstSupplementary) {
      appendUnit(codePoint, bytes);
      continue;
    }
    appendUnit(firstHigh + ((codePoint - firstSupplementary) >> 10U), bytes);
    appendUnit(firstLow + ((codePoint - firstSupplementary) & 0x3FFU), bytes);
  }
  return bytes;
}

std::string utf8FromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t codePoint = unitAt(bytes, at);
    if (codePoint >= firstHigh && codePoint < afterLow) {
      const char32_t low = codePoint < firstLow && at + 3 < bytes.size() ? unitAt(bytes, at + 2) : 0;
      if (low >= firstLow && low < afterLow) {
        codePoint = firstSupplementary + ((codePoint - firstHigh) << 10U) + (low - firstLow);
        at += 2;
      } else {
        codePoint = replacement;
      }
    }
    appendUtf8(codePoint, text);
  }
  return text;
}

}  // namespace korvel::settings
