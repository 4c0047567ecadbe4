#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvel::settings {

/// A value as callers of the store see it. `type` is the registry's type code, which need not be one of ValueType.
/// A string holds its UTF-8 text and one terminating NUL, or nothing at all where nothing was stored; every other type
/// holds its bytes as they are.
struct RegistryValue {
  std::uint32_t type = 0;
  std::string bytes;
};

/// The bytes that a string value reports for UTF-16 data as a registry holds it, with or without a terminator.
[[nodiscard]] std::string reportedString(std::string_view utf16);

/// Reads the data part of a value line at the front of `text`, which is taken off: "text", dword:, hex: or hex(n):,
/// hexadecimal lists also over several lines. Nothing where the front is none of these.
[[nodiscard]] std::optional<RegistryValue> takeValueData(std::string_view& text);

/// Reads a quoted text with its escapes at the front of `text`, which is taken off.
[[nodiscard]] std::optional<std::string> takeQuoted(std::string_view& text);

/// `text` in quotes, backslashes and quotes escaped.
[[nodiscard]] std::string quoted(std::string_view text);

/// The data part for a string value: quoted where an editor shows it safely, otherwise (control characters)
/// hexadecimal. `text` is UTF-8; `lineEnd` parts the lines of a long hexadecimal list.
[[nodiscard]] std::string stringData(std::string_view text, std::string_view lineEnd);

}  // namespace korvel::settings
