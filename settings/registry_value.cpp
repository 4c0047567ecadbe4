#include "settings/registry_value.h"

#include <algorithm>
#include <cstddef>

#include "base/numbers.h"
#include "base/text.h"
#include "base/utf16.h"
#include "settings/settings_backend.h"

namespace korvel::settings {

namespace {

constexpr auto stringType = static_cast<std::uint32_t>(ValueType::string);
constexpr auto binaryType = static_cast<std::uint32_t>(ValueType::binary);
constexpr auto dwordType = static_cast<std::uint32_t>(ValueType::dword);
constexpr std::size_t dwordDigits = 8;
/// Bytes of a hexadecimal list on one line; with the value's name such lines stay within 80 characters.
constexpr std::size_t bytesPerLine = 20;

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!equalsIgnoringAsciiCase(text.substr(0, prefix.size()), prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

void skipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

/// One to `most` hexadecimal digits as a number.
std::optional<std::uint32_t> takeHexadecimal(std::string_view& text, std::size_t most) {
  std::uint32_t number = 0;
  std::size_t count = 0;
  for (; count < most && count < text.size(); ++count) {
    const auto digit = hexDigitValue(text[count]);
    if (!digit) break;
    number = number << 4U | *digit;
  }
  if (count == 0) return std::nullopt;
  text.remove_prefix(count);
  return number;
}

/// A backslash that ends its line: the list goes on in the next one.
bool takeContinuation(std::string_view& text) {
  if (!takePrefix(text, "\\")) return false;
  skipBlanks(text);
  takePrefix(text, "\r");
  if (!takePrefix(text, "\n")) return false;
  skipBlanks(text);
  return true;
}

/// Bytes parted by commas, possibly none. The list may open with a continuation: a long name leaves it no room.
std::optional<std::string> takeByteList(std::string_view& text) {
  std::string bytes;
  skipBlanks(text);
  const bool continued = !text.empty() && text.front() == '\\';
  if (continued && !takeContinuation(text)) return std::nullopt;
  if (!continued && (text.empty() || !hexDigitValue(text.front()))) return bytes;
  for (;;) {
    const auto byte = takeHexadecimal(text, 2);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<char>(*byte));
    skipBlanks(text);
    if (!takePrefix(text, ",")) return bytes;
    skipBlanks(text);
    if (!text.empty() && text.front() == '\\' && !takeContinuation(text)) return std::nullopt;
  }
}

std::optional<RegistryValue> takeDword(std::string_view& text) {
  const auto number = takeHexadecimal(text, dwordDigits);
  if (!number) return std::nullopt;
  RegistryValue value{dwordType, {}};
  for (unsigned shift = 0; shift < 32U; shift += 8U) value.bytes.push_back(static_cast<char>(*number >> shift & 0xFFU));
  return value;
}

std::optional<RegistryValue> takeTyped(std::uint32_t type, std::string_view& text) {
  auto bytes = takeByteList(text);
  if (!bytes) return std::nullopt;
  return RegistryValue{type, type == stringType ? reportedString(*bytes) : *bytes};
}

bool isControl(char c) {
  return (static_cast<unsigned char>(c) < 0x20U && c != '\t') || c == '\x7F';
}

}  // namespace

std::string reportedString(std::string_view utf16) {
  if (utf16.empty()) return {};
  std::string text = utf8FromUtf16Bytes(utf16);
  // A terminator is counted once, whether the writer stored one or not.
  if (text.empty() || text.back() != '\0') text.push_back('\0');
  return text;
}

std::optional<RegistryValue> takeValueData(std::string_view& text) {
  if (!text.empty() && text.front() == '"') {
    auto string = takeQuoted(text);
    if (!string) return std::nullopt;
    string->push_back('\0');
    return RegistryValue{stringType, *std::move(string)};
  }
  if (takePrefix(text, "dword:")) return takeDword(text);
  if (takePrefix(text, "hex:")) return takeTyped(binaryType, text);
  if (!takePrefix(text, "hex(")) return std::nullopt;
  const auto type = takeHexadecimal(text, dwordDigits);
  if (!type || !takePrefix(text, "):")) return std::nullopt;
  return takeTyped(*type, text);
}

std::optional<std::string> takeQuoted(std::string_view& text) {
  std::string value;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] == '"') {
      text.remove_prefix(i + 1);
      return value;
    }
    if (text[i] == '\\') {
      // Only these two are escapes. A path typed with single backslashes is refused, not guessed at.
      ++i;
      if (i == text.size() || (text[i] != '\\' && text[i] != '"')) return std::nullopt;
    }
    value.push_back(text[i]);
  }
  return std::nullopt;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') result.push_back('\\');
    result.push_back(c);
  }
  result.push_back('"');
  return result;
}

std::string stringData(std::string_view text, std::string_view lineEnd) {
  if (std::none_of(text.begin(), text.end(), isControl)) return quoted(text);
  std::string bytes = utf16BytesFromUtf8(text).value_or(std::string{});
  bytes.append(2, '\0');
  std::string result = "hex(1):";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0) result.push_back(',');
    if (i > 0 && i % bytesPerLine == 0) {
      result.push_back('\\');
      result += lineEnd;
      result += "  ";
    }
    appendHex(static_cast<unsigned char>(bytes[i]), result);
  }
  return result;
}

}  // namespace korvel::settings
