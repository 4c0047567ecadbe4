#include <windows.h>

#include "base/paths.h"
#include "base/paths_windows.h"
#include "base/text.h"
#include "base/wide_text_windows.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

/// Folders may be this long; files a few characters more.
constexpr std::size_t longestPlainPath = 247;

bool isSeparator(wchar_t c) noexcept {
  return c == L'\\' || c == L'/';
}

}  // namespace

std::wstring fullPath(const std::wstring& path) {
  std::wstring whole;
  // The working folder may change between two calls; each gives the size that it needs, its terminator counted.
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

fs::path pathFromUtf8(std::string_view text) {
  return {lossyWideFromUtf8(text)};
}

std::string utf8FromPath(const fs::path& path) {
  return utf8FromWide(path.native());
}

bool isAbsolute(const fs::path& path) {
  const std::wstring& text = path.native();
  return path.is_absolute() || (text.size() >= 2 && isSeparator(text[0]) && isSeparator(text[1]));
}

fs::path absolutePath(const fs::path& path, std::error_code& failure) {
  failure.clear();
  if (isAbsolute(path)) return path;
  std::wstring whole = fullPath(path.native());
  if (!whole.empty()) return {std::move(whole)};
  failure.assign(static_cast<int>(GetLastError()), std::system_category());
  return path;
}

bool hasExtension(const fs::path& file, std::string_view extension) {
  return equalsIgnoringAsciiCase(utf8FromPath(file.extension()), extension);
}

fs::path extendedLengthPath(const fs::path& path) {
  constexpr std::wstring_view verbatim = LR"(\\?\)";
  constexpr std::wstring_view device = LR"(\\.\)";
  constexpr std::wstring_view network = LR"(\\)";
  const std::wstring& text = path.native();
  if (text.empty() || text.starts_with(verbatim) || text.starts_with(device)) return path;
  std::wstring whole = fullPath(text);
  // Short paths stay as they are: device names are recognised only there.
  if (whole.size() <= longestPlainPath || whole.starts_with(device)) return path;
  if (whole.starts_with(network)) return {LR"(\\?\UNC\)" + whole.substr(network.size())};
  return {whole.insert(0, verbatim)};
}

}  // namespace korvel
