#pragma once

#include <windows.h>
// after windows.h
#include <objbase.h>

#include <cstring>
#include <string_view>

namespace korvel::ocx {

/// A copy of `text` that a caller frees as the system requires, or null without memory.
[[nodiscard]] inline LPOLESTR allocated(std::wstring_view text) noexcept {
  auto* copy = static_cast<LPOLESTR>(::CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, text.data(), text.size() * sizeof(wchar_t));
  copy[text.size()] = L'\0';
  return copy;
}

}  // namespace korvel::ocx
