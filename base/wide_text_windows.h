#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// The texts that calls of Windows take and give: UTF-16 in wide characters.

/// UTF-8 `text` as wide text; nothing where `text` is not UTF-8.
[[nodiscard]] std::optional<std::wstring> wideFromUtf8(std::string_view text);
/// The same, with U+FFFD for what is not UTF-8.
[[nodiscard]] std::wstring anyWideFromUtf8(std::string_view text);
/// Wide text as UTF-8, lone surrogates as U+FFFD.
[[nodiscard]] std::string utf8FromWide(std::wstring_view text);

}  // namespace korvel
