#include <algorithm>
#include <array>

#include "base/text.h"
#include "settings/code_page.h"

namespace korvel::settings {

namespace {

// Characters of the bytes 0x80 to 0x9F; all other bytes stand for the character of their number.
constexpr char32_t firstOpenByte = 0x80;
constexpr char32_t endOfOpenBytes = 0xA0;
constexpr char32_t endOfBytes = 0x100;
constexpr std::array<char32_t, endOfOpenBytes - firstOpenByte> openBytes = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

bool appendBytesOf(char32_t character, std::string& bytes) {
  if (character < firstOpenByte || (character >= endOfOpenBytes && character < endOfBytes)) {
    bytes.push_back(static_cast<char>(character));
    return true;
  }
  const auto* const found = std::find(openBytes.begin(), openBytes.end(), character);
  if (found == openBytes.end()) return false;
  bytes.push_back(static_cast<char>(firstOpenByte + static_cast<char32_t>(found - openBytes.begin())));
  return true;
}

std::string textOfBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < firstOpenByte)
      text.push_back(c);
    else
      appendCodePoint(byte < endOfOpenBytes ? openBytes.at(byte - firstOpenByte) : char32_t{byte}, text);
  }
  return text;
}

}  // namespace korvel::settings
