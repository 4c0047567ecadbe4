#include <windows.h>

#include "base/paths.h"
#include "base/wide_text_windows.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

/// Folders may be this long; files a few characters more.
constexpr std::size_t longestPlainPath = 247;

/// The whole path with the system's separators; empty where the system makes none of it.
std::wstring wholePath(const std::wstring& path) {
  std::wstring whole;
  // The working folder may change between two calls; each tells how much it needs, its terminator counted.
  for (DWORD needed = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr); needed > whole.size();) {
    whole.resize(needed);
    needed = GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr);
    if (needed < whole.size()) {
      whole.resize(needed);
      break;
    }
  }
  return whole;
}

}  // namespace

fs::path pathFromUtf8(std::string_view text) {
  return {anyWideFromUtf8(text)};
}

std::string utf8FromPath(const fs::path& path) {
  return utf8FromWide(path.native());
}

bool isWhole(const fs::path& path) {
  return path.is_absolute() || path.native().starts_with(LR"(\\)") || path.native().starts_with(L"//");
}

fs::path pathForCalls(const fs::path& path) {
  constexpr std::wstring_view verbatim = LR"(\\?\)";
  constexpr std::wstring_view device = LR"(\\.\)";
  constexpr std::wstring_view network = LR"(\\)";
  const std::wstring& text = path.native();
  if (text.empty() || text.starts_with(verbatim) || text.starts_with(device)) return path;
  std::wstring whole = wholePath(text);
  // Short paths stay plain: names of devices mean something in them only.
  if (whole.size() <= longestPlainPath || whole.starts_with(device)) return path;
  if (whole.starts_with(network)) return {LR"(\\?\UNC\)" + whole.substr(network.size())};
  return {whole.insert(0, verbatim)};
}

}  // namespace korvel
