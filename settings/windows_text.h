#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel::settings {

/// UTF-8 `text` as the platform's wide text; nothing where `text` is not UTF-8.
[[nodiscard]] std::optional<std::wstring> wideFromUtf8(std::string_view text);
/// Wide text as UTF-8, lone surrogates as U+FFFD.
[[nodiscard]] std::string utf8FromWide(std::wstring_view text);

}  // namespace korvel::settings
