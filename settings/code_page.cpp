#include "settings/code_page.h"

#include <optional>

#include "base/text.h"

namespace korvel::settings {

std::size_t appendInCodePage(std::string_view text, std::string& bytes) {
  std::size_t replaced = 0;
  while (!text.empty()) {
    // Nearly all of a trail is ASCII, which is the same in both.
    const std::size_t plain = asciiPrefixLength(text);
    bytes.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::optional<char32_t> character = takeCodePoint(text);
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
    text.remove_prefix(asciiPrefixLength(text));
    if (text.empty()) break;
    const std::optional<char32_t> character = takeCodePoint(text);
    bytes.clear();
    if (!character || !appendBytesOf(*character, bytes)) return false;
  }
  return true;
}

std::string fromCodePage(std::string_view bytes) {
  return textOfBytes(bytes);
}

}  // namespace korvel::settings
