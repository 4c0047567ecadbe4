#include "output/terminal_text.h"

#include <utf8proc.h>

#include <cstdint>
#include <optional>

#include "base/text.h"

namespace korvel::output {

namespace {

constexpr bool isPrintableAscii(char c) noexcept {
  return c >= ' ' && c <= '~';
}

void appendHexadecimal(std::uint32_t number, int digits, std::string& out) {
  constexpr std::string_view figures = "0123456789ABCDEF";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += figures[(number >> shift) & 0xFU];
}

/// Joiners shape letters and emoji, and a soft hyphen is visible: they need no escape.
constexpr bool isHarmlessFormat(char32_t codePoint) noexcept {
  return codePoint == 0x00AD || codePoint == 0x200C || codePoint == 0x200D;
}

bool needsEscape(char32_t codePoint) noexcept {
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(codePoint))) {
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

    const std::string_view rest = text;
    const std::optional<char32_t> codePoint = takeCodePoint(text);
    if (!codePoint) {
      out += "\\x";
      appendHexadecimal(static_cast<unsigned char>(rest.front()), 2, out);
    } else if (needsEscape(*codePoint)) {
      appendEscape(*codePoint, out);
    } else {
      out.append(rest.substr(0, rest.size() - text.size()));
    }
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
    const std::optional<char32_t> codePoint = takeCodePoint(text);
    width += codePoint ? static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(*codePoint))) : 1;
  }
  return width;
}

}  // namespace korvel::output
