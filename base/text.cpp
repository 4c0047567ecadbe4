#include "base/text.h"

#include <utf8proc.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace korvel {

namespace {

constexpr char asciiLower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The bit of each byte that ASCII leaves unset.
constexpr std::uint64_t highBits = 0x8080808080808080U;

std::uint64_t loadWord(const char* at) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

/// Decodes one code point at the front of `text`; returns its length in bytes, or 0 when the front is malformed.
std::size_t decode(std::string_view text, utf8proc_int32_t& codePoint) noexcept {
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  return length > 0 ? static_cast<std::size_t>(length) : 0;
}

void encode(utf8proc_int32_t codePoint, std::string& out) {
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(codePoint, bytes.data());
  out.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
}

}  // namespace

void appendCaseFolded(std::string_view text, std::string& folded) {
  if (isAscii(text)) {
    folded.reserve(folded.size() + text.size());
    for (const char c : text) folded.push_back(asciiLower(c));
    return;
  }
  while (!text.empty()) {
    utf8proc_int32_t codePoint = 0;
    const std::size_t length = decode(text, codePoint);
    if (length == 0) {
      folded.push_back(text.front());
      text.remove_prefix(1);
      continue;
    }
    // A letter may fold into several ("ß" into "ss"); four code points are more than any does.
    std::array<utf8proc_int32_t, 8> parts{};
    int boundClass = 0;
    const auto count = utf8proc_decompose_char(codePoint, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
                                               UTF8PROC_CASEFOLD, &boundClass);
    if (count > 0 && static_cast<std::size_t>(count) <= parts.size()) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) encode(parts[i], folded);
    } else {
      folded.append(text.substr(0, length));
    }
    text.remove_prefix(length);
  }
}

std::string caseFolded(std::string_view text) {
  std::string folded;
  appendCaseFolded(text, folded);
  return folded;
}

bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right) noexcept {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    if (asciiLower(left[i]) != asciiLower(right[i])) return false;
  return true;
}

std::size_t asciiPrefixLength(std::string_view text) noexcept {
  // Eight bytes at a time: whole exports go through here.
  std::size_t length = 0;
  while (length + sizeof(std::uint64_t) <= text.size() && (loadWord(text.data() + length) & highBits) == 0)
    length += sizeof(std::uint64_t);
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0x80U) == 0) ++length;
  return length;
}

bool isAscii(std::string_view text) noexcept {
  // Eight bytes at a time, the last eight overlapping the ones before.
  if (text.size() < sizeof(std::uint64_t)) return asciiPrefixLength(text) == text.size();
  const char* const last = text.data() + text.size() - sizeof(std::uint64_t);
  std::uint64_t seen = loadWord(last);
  for (const char* at = text.data(); at < last; at += sizeof(std::uint64_t)) seen |= loadWord(at);
  return (seen & highBits) == 0;
}

bool isValidUtf8(std::string_view text) noexcept {
  while (!text.empty()) {
    utf8proc_int32_t codePoint = 0;
    const std::size_t length = decode(text, codePoint);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string replaceInvalidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    utf8proc_int32_t codePoint = 0;
    const std::size_t length = decode(text, codePoint);
    if (length == 0) {
      valid += "\xEF\xBF\xBD";
      text.remove_prefix(1);
      continue;
    }
    valid.append(text.substr(0, length));
    text.remove_prefix(length);
  }
  return valid;
}

std::optional<char32_t> takeCodePoint(std::string_view& text) noexcept {
  utf8proc_int32_t codePoint = 0;
  const std::size_t length = decode(text, codePoint);
  text.remove_prefix(length == 0 ? 1 : length);
  if (length == 0) return std::nullopt;
  return static_cast<char32_t>(codePoint);
}

void appendCodePoint(char32_t codePoint, std::string& out) {
  const auto encoded = static_cast<utf8proc_int32_t>(codePoint);
  encode(utf8proc_codepoint_valid(encoded) ? encoded : static_cast<utf8proc_int32_t>(replacementCharacter), out);
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
  for (auto at = text.find(from); !from.empty() && at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace korvel
