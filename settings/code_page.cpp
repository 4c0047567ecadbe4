#include "settings/code_page.h"

#include <cstdint>
#include <cstring>
#include <optional>

#include "base/text.h"
#include "settings/code_page_characters.h"

namespace korvel::settings {

namespace {

constexpr unsigned char firstBeyondAscii = 0x80;

/// Looks at eight bytes at a time: whole exports go through here.
std::size_t lengthOfAscii(std::string_view text) noexcept {
  constexpr std::uint64_t highBits = 0x8080808080808080U;
  std::size_t plain = 0;
  for (std::uint64_t word = 0; plain + sizeof word <= text.size(); plain += sizeof word) {
    std::memcpy(&word, text.data() + plain, sizeof word);
    if ((word & highBits) != 0) break;
  }
  while (plain < text.size() && static_cast<unsigned char>(text[plain]) < firstBeyondAscii) ++plain;
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
    if (character && appendBytesOf(*character, bytes)) continue;
    bytes.push_back('?');
    ++replaced;
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
  std::string bytes;
  while (!text.empty()) {
    text.remove_prefix(lengthOfAscii(text));
    if (text.empty()) break;
    const std::optional<char32_t> character = takeCharacter(text);
    bytes.clear();
    if (!character || !appendBytesOf(*character, bytes)) return false;
  }
  return true;
}

std::string fromCodePage(std::string_view bytes) {
  return textOfBytes(bytes);
}

}  // namespace korvel::settings
