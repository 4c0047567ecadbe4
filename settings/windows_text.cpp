#include "settings/windows_text.h"

#include <cstring>

#include "settings/utf16.h"

namespace korvel::settings {

static_assert(sizeof(wchar_t) == 2, "a wide character is one UTF-16 unit here");

std::optional<std::wstring> wideFromUtf8(std::string_view text) {
  const auto bytes = utf16FromUtf8(text);
  if (!bytes) return std::nullopt;
  std::wstring wide(bytes->size() / sizeof(wchar_t), L'\0');
  std::memcpy(wide.data(), bytes->data(), bytes->size());
  return wide;
}

std::string utf8FromWide(std::wstring_view text) {
  return utf8FromUtf16({reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)});
}

}  // namespace korvel::settings
