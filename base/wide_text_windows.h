#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"
#include "base/utf16.h"

namespace korvel {

// The texts that calls of Windows take and give: UTF-16 in wide characters.

static_assert(sizeof(wchar_t) == sizeof(char16_t), "a wide character is one UTF-16 unit here");

/// UTF-8 `text` as wide text, with U+FFFD for what is not UTF-8.
[[nodiscard]] inline std::wstring lossyWideFromUtf8(std::string_view text) {
  const std::u16string units = utf16FromUtf8(text);
  return {units.begin(), units.end()};
}

/// The same; nothing where `text` is not UTF-8.
[[nodiscard]] inline std::optional<std::wstring> wideFromUtf8(std::string_view text) {
  if (!isValidUtf8(text)) return std::nullopt;
  return lossyWideFromUtf8(text);
}

/// Wide text as UTF-8, lone surrogates as U+FFFD.
[[nodiscard]] inline std::string utf8FromWide(std::wstring_view text) {
  return utf8FromUtf16(std::u16string(text.begin(), text.end()));
}

}  // namespace korvel
