#include "tests/tds_server/protocol/bytes.h"

#include <iconv.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace korvel::test::tds {
namespace {

void appendUnit(std::string& utf16, std::uint32_t unit) {
  utf16 += static_cast<char>(unit & 0xFF);
  utf16 += static_cast<char>(unit >> 8);
}

void appendUtf8(std::string& utf8, std::uint32_t point) {
  const auto tail = [&](unsigned shift) { utf8 += static_cast<char>(0x80 | (point >> shift & 0x3F)); };
  if (point < 0x80) {
    utf8 += static_cast<char>(point);
  } else if (point < 0x800) {
    utf8 += static_cast<char>(0xC0 | point >> 6);
    tail(0);
  } else if (point < 0x10000) {
    utf8 += static_cast<char>(0xE0 | point >> 12);
    tail(6);
    tail(0);
  } else {
    utf8 += static_cast<char>(0xF0 | point >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

std::string toUtf16(std::string_view utf8) {
  std::string utf16;
  utf16.reserve(utf8.size() * 2);
  for (std::size_t i = 0; i < utf8.size();) {
    const auto first = static_cast<unsigned char>(utf8[i]);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length == 0 || i + length > utf8.size()) throw std::invalid_argument("not UTF-8");
    std::uint32_t point = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) throw std::invalid_argument("not UTF-8");
      point = point << 6 | (next & 0x3F);
    }
    i += length;
    if (point < 0x10000) {
      appendUnit(utf16, point);
    } else {
      appendUnit(utf16, 0xD800 + ((point - 0x10000) >> 10));
      appendUnit(utf16, 0xDC00 + ((point - 0x10000) & 0x3FF));
    }
  }
  return utf16;
}

std::string fromUtf16(std::string_view utf16) {
  const auto unitAt = [&](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(utf16[i]) | static_cast<unsigned char>(utf16[i + 1])
                                                                                 << 8);
  };
  std::string utf8;
  for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
    std::uint32_t point = unitAt(i);
    if (point >= 0xD800 && point < 0xDC00 && i + 3 < utf16.size()) {
      const std::uint32_t low = unitAt(i + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    appendUtf8(utf8, point);
  }
  return utf8;
}

std::string toCodePage(std::string_view utf8, const std::string& codePage) {
  iconv_t converter = ::iconv_open(codePage.c_str(), "UTF-8");
  // iconv_open reports failure as the pointer -1.
  if (reinterpret_cast<std::intptr_t>(converter) == -1) throw std::invalid_argument("no code page " + codePage);
  std::string source(utf8);
  std::string target(utf8.size() * 4 + 4, '\0');
  char* from = source.data();
  char* to = target.data();
  std::size_t fromLeft = source.size();
  std::size_t toLeft = target.size();
  const std::size_t result = ::iconv(converter, &from, &fromLeft, &to, &toLeft);
  ::iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) throw std::invalid_argument(codePage + " cannot hold '" + source + "'");
  target.resize(target.size() - toLeft);
  return target;
}

}  // namespace korvel::test::tds
