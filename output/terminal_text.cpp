#include "output/terminal_text.h"

#include <utf8proc.h>

#include <cstdint>

namespace korvel::output {

namespace {

constexpr bool isPrintableAscii(char c) noexcept {
  return c >= ' ' && c <= '~';
}

std::size_t decode(std::string_view text, utf8proc_int32_t& codePoint) noexcept {
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  return length > 0 ? static_cast<std::size_t>(length) : 0;
}

void appendHexadecimal(std::uint32_t number, int digits, std::string& out) {
  constexpr std::string_view figures = "0123456789ABCDEF";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += figures[(number >> shift) & 0xFU];
}

/// Joiners shape letters and emoji, and a soft hyphen is visible: they need no escape.
constexpr bool isHarmlessFormat(utf8proc_int32_t codePoint) noexcept {
  return codePoint == 0x00AD || codePoint == 0x200C || codePoint == 0x200D;
}

bool needsEscape(utf8proc_int32_t codePoint) noexcept {
  switch (utf8proc_category(codePoint)) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    case UTF8PROC_CATEGORY_CF:
      return !isHarmlessFormat(codePoint);
    default:
      return false;
  }
}

void appendEscape(std::uint32_t codePoint, std::string& out) {
  if (codePoint == '\n') {
    out += "\\n";
  } else if (codePoint == '\r') {
    out += "\\r";
  } else if (codePoint == '\t') {
    out += "\\t";
  } else if (codePoint < 0x80) {
    out += "\\x";
    appendHexadecimal(codePoint, 2, out);
  } else if (codePoint < 0x10000) {
    out += "\\u";
    appendHexadecimal(codePoint, 4, out);
  } else {
    out += "\\U";
    appendHexadecimal(codePoint, 8, out);
  }
}

}  // namespace

void appendTerminalText(std::string_view text, std::string& out) {
  while (!text.empty()) {
    std::size_t plain = 0;
    while (plain < text.size() && isPrintableAscii(text[plain])) ++plain;
    out.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) return;

    utf8proc_int32_t codePoint = 0;
    std::size_t length = decode(text, codePoint);
    if (length == 0) {
      length = 1;
      out += "\\x";
      appendHexadecimal(static_cast<unsigned char>(text.front()), 2, out);
    } else if (needsEscape(codePoint)) {
      appendEscape(static_cast<std::uint32_t>(codePoint), out);
    } else {
      out.append(text.substr(0, length));
    }
    text.remove_prefix(length);
  }
}

std::string terminalText(std::string_view text) {
  std::string out;
  appendTerminalText(text, out);
  return out;
}

std::size_t terminalWidth(std::string_view text) noexcept {
  std::size_t width = 0;
  while (!text.empty()) {
    if (isPrintableAscii(text.front())) {
      ++width;
      text.remove_prefix(1);
      continue;
    }
    utf8proc_int32_t codePoint = 0;
    const std::size_t length = decode(text, codePoint);
    if (length == 0) {
      ++width;
      text.remove_prefix(1);
      continue;
    }
    width += static_cast<std::size_t>(utf8proc_charwidth(codePoint));
    text.remove_prefix(length);
  }
  return width;
}

}  // namespace korvel::output
