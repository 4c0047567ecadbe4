#include "tests/ocx/registry_text.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/wide_text_windows.h"

namespace korvel::test {
namespace {

std::string hexadecimal(const std::vector<BYTE>& bytes) {
  std::string text;
  for (const BYTE byte : bytes) {
    text += "0123456789abcdef"[byte >> 4U];
    text += "0123456789abcdef"[byte & 15U];
  }
  return text;
}

void append(HKEY key, const std::string& path, std::string& text) {
  text += path + '\n';
  std::array<wchar_t, 16384> name{};
  std::vector<std::string> lines;
  for (DWORD index = 0;; ++index) {
    auto length = static_cast<DWORD>(name.size());
    DWORD type = 0;
    DWORD size = 0;
    if (::RegEnumValueW(key, index, name.data(), &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
    std::vector<BYTE> bytes(size);
    ::RegQueryValueExW(key, name.data(), nullptr, nullptr, bytes.data(), &size);
    const std::wstring_view wide(reinterpret_cast<const wchar_t*>(bytes.data()), size / sizeof(wchar_t));
    const std::string value = type == REG_SZ ? utf8FromWide(wide.substr(0, wide.find(L'\0'))) : hexadecimal(bytes);
    lines.push_back(path + ' ' + utf8FromWide({name.data(), length}) + "=" + value + '\n');
  }
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) text += line;
  for (DWORD index = 0;; ++index) {
    auto length = static_cast<DWORD>(name.size());
    if (::RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    HKEY child = nullptr;
    const std::string childPath = path + '\\' + utf8FromWide({name.data(), length});
    if (::RegOpenKeyExW(key, name.data(), 0, KEY_READ, &child) != ERROR_SUCCESS) {
      text += childPath + " cannot be opened\n";
      continue;
    }
    append(child, childPath, text);
    ::RegCloseKey(child);
  }
}

}  // namespace

std::string registryText(HKEY parent, const std::wstring& key) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(parent, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return {};
  std::string text;
  append(opened, {}, text);
  ::RegCloseKey(opened);
  return text;
}

}  // namespace korvel::test
