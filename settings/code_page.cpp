#include "settings/code_page.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "base/text.h"

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

/// The byte of `character`, or nothing for a character that the code page does not hold.
std::optional<char> byteOf(char32_t character) noexcept {
  if (character < firstOpenByte || (character >= endOfOpenBytes && character < endOfBytes))
    return static_cast<char>(character);
  const auto* const found = std::find(openBytes.begin(), openBytes.end(), character);
  if (found == openBytes.end()) return std::nullopt;
  return static_cast<char>(firstOpenByte + static_cast<char32_t>(found - openBytes.begin()));
}

/// Looks at eight bytes at a time: whole exports go through here.
std::size_t lengthOfAscii(std::string_view text) noexcept {
  constexpr std::uint64_t highBits = 0x8080808080808080U;
  std::size_t plain = 0;
  for (std::uint64_t word = 0; plain + sizeof word <= text.size(); plain += sizeof word) {
    std::memcpy(&word, text.data() + plain, sizeof word);
    if ((word & highBits) != 0) break;
  }
  while (plain < text.size() && static_cast<unsigned char>(text[plain]) < firstOpenByte) ++plain;
  return plain;
}

}  // namespace

std::size_t appendInCodePage(std::string_view text, std::string& bytes) {
  std::size_t replaced = 0;
  while (!text.empty()) {
    // Nearly all of a trail is ASCII, which is the same in both.
    const std::size_t plain = lengthOfAscii(text);
    bytes.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::optional<char32_t> character = takeCharacter(text);
    const std::optional<char> byte = character ? byteOf(*character) : std::nullopt;
    bytes.push_back(byte.value_or('?'));
    if (!byte) ++replaced;
  }
  return replaced;
}

std::string toCodePage(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  appendInCodePage(text, bytes);
  return bytes;
}

bool fitsCodePage(std::string_view text) {
  while (!text.empty()) {
    text.remove_prefix(lengthOfAscii(text));
    if (text.empty()) break;
    const std::optional<char32_t> character = takeCharacter(text);
    if (!character || !byteOf(*character)) return false;
  }
  return true;
}

std::string fromCodePage(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < firstOpenByte)
      text.push_back(c);
    else
      appendCharacter(byte < endOfOpenBytes ? openBytes.at(byte - firstOpenByte) : char32_t{byte}, text);
  }
  return text;
}

}  // namespace korvel::settings
