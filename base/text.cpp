#include "base/text.h"

#include <utf8proc.h>

#include <array>

namespace korvel {

namespace {

constexpr char asciiLower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isAscii(std::string_view text) noexcept {
  for (const char c : text)
    if ((static_cast<unsigned char>(c) & 0x80U) != 0) return false;
  return true;
}

/// Decodes one code point at the front of `text`; returns its length in bytes, or 0 when the front is malformed.
std::size_t decode(std::string_view text, utf8proc_int32_t& codePoint) noexcept {
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  return length > 0 ? static_cast<std::size_t>(length) : 0;
}

void appendCodePoint(utf8proc_int32_t codePoint, std::string& out) {
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
      for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) appendCodePoint(parts[i], folded);
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

std::optional<char32_t> takeCharacter(std::string_view& text) noexcept {
  utf8proc_int32_t codePoint = 0;
  const std::size_t length = decode(text, codePoint);
  text.remove_prefix(length == 0 ? 1 : length);
  if (length == 0) return std::nullopt;
  return static_cast<char32_t>(codePoint);
}

void appendCharacter(char32_t character, std::string& out) {
  constexpr char32_t replacement = 0xFFFD;
  const auto codePoint = static_cast<utf8proc_int32_t>(character);
  appendCodePoint(utf8proc_codepoint_valid(codePoint) ? codePoint : static_cast<utf8proc_int32_t>(replacement), out);
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
  for (auto at = text.find(from); !from.empty() && at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace korvel
