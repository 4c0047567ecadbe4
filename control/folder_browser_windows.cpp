#include "control/folder_browser_windows.h"

#include <array>
#include <string>
#include <string_view>

#include "settings/code_page.h"

namespace korvel::control {
namespace {

// Numbers that the dialog has always been called with. The second adds one that it ignores today to the first.
constexpr UINT foldersOnly = 1;
constexpr UINT foldersAndFiles = 8193;

using PathBuffer = std::array<char, MAX_PATH>;

}  // namespace

std::optional<QString> browseForFolder(const FolderShell& shell, const QString& title, bool showFiles) {
  const std::string titleBytes = settings::toCodePage(title.toStdString());
  PathBuffer displayName{};
  BROWSEINFOA request{};
  request.pszDisplayName = displayName.data();
  request.lpszTitle = titleBytes.c_str();
  request.ulFlags = showFiles ? foldersAndFiles : foldersOnly;
  const LPITEMIDLIST item = shell.browse(&request);
  if (item == nullptr) return std::nullopt;

  PathBuffer path{};
  const bool found = shell.pathOf(item, path.data()) != 0;
  shell.release(item);
  // What has no path, or one that is longer than the shell's buffers, cannot be written to.
  if (!found || path.front() == '\0') return std::nullopt;
  const std::string_view whole(path.data(), path.size());
  return QString::fromStdString(settings::fromCodePage(whole.substr(0, whole.find('\0'))));
}

}  // namespace korvel::control
