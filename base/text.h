#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

/// `text` without leading and trailing blanks. Only U+0020 counts: tabs and line breaks are content of an audit trail.
[[nodiscard]] constexpr std::string_view trimBlanks(std::string_view text) noexcept {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The text without the blanks, tabs and carriage returns around it.
[[nodiscard]] constexpr std::string_view trimWhitespace(std::string_view text) noexcept {
  constexpr std::string_view white = " \t\r";
  const auto first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

/// Appends the case-folded form of UTF-8 `text` to `folded`: the same bytes on every machine, whatever its locale.
/// Bytes that are not UTF-8 are kept as they stand, so that no two different texts fold together by accident.
void appendCaseFolded(std::string_view text, std::string& folded);
[[nodiscard]] std::string caseFolded(std::string_view text);

/// Whether two texts differ at most in the case of ASCII letters (identifiers, command words, header captions).
[[nodiscard]] bool equalsIgnoringAsciiCase(std::string_view left, std::string_view right) noexcept;

/// The number of ASCII characters that `text` begins with.
[[nodiscard]] std::size_t asciiPrefixLength(std::string_view text) noexcept;
[[nodiscard]] bool isAscii(std::string_view text) noexcept;

/// Stands for bytes that are no character.
inline constexpr char32_t replacementCharacter = 0xFFFD;

/// Whether `text` is well-formed UTF-8 (no surrogates, nothing above U+10FFFF, no over-long forms).
[[nodiscard]] bool isValidUtf8(std::string_view text) noexcept;
/// `text` with every malformed sequence replaced by U+FFFD.
[[nodiscard]] std::string replaceInvalidUtf8(std::string_view text);

/// Takes the first code point off UTF-8 `text`, which must not be empty. Nothing where it begins with a malformed byte;
/// that byte alone is taken off then.
[[nodiscard]] std::optional<char32_t> takeCodePoint(std::string_view& text) noexcept;
/// Appends a code point as UTF-8; U+FFFD where `codePoint` is a surrogate or too large.
void appendCodePoint(char32_t codePoint, std::string& out);

/// `text` with every `from` replaced by `to`.
[[nodiscard]] std::string replaceAll(std::string text, std::string_view from, std::string_view to);

}  // namespace korvel
