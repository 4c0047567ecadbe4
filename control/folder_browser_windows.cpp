#include "control/folder_browser_windows.h"

#include <array>
#include <string_view>

namespace korvel::control {
namespace {

// Fixed flags. The second adds one bit that newer systems interpret as another option; this is deliberate.
constexpr UINT foldersOnly = 1;
constexpr UINT foldersAndFiles = 8193;

using PathBuffer = std::array<char, MAX_PATH>;

/// Selects the folder whose path is `data` as soon as the dialog has its tree.
int CALLBACK selectBeginning(HWND dialog, UINT message, LPARAM /*parameter*/, LPARAM data) {
  if (message == BFFM_INITIALIZED) SendMessageA(dialog, BFFM_SETSELECTIONA, TRUE, data);
  return 0;
}

}  // namespace

std::optional<QString> browseForFolder(const FolderShell& shell, const QString& title, bool showFiles,
                                       const QString& beginning) {
  // Narrow calls use the process's code page, which need not be the system's.
  const QByteArray titleBytes = title.toLocal8Bit();
  PathBuffer displayName{};
  BROWSEINFOA request{};
  request.pszDisplayName = displayName.data();
  request.lpszTitle = titleBytes.constData();
  request.ulFlags = showFiles ? foldersAndFiles : foldersOnly;
  const QByteArray beginningBytes = beginning.toLocal8Bit();
  if (!beginning.isEmpty()) {
    request.lpfn = &selectBeginning;
    request.lParam = reinterpret_cast<LPARAM>(beginningBytes.constData());
  }
  const LPITEMIDLIST item = shell.browse(&request);
  if (item == nullptr) return std::nullopt;

  PathBuffer path{};
  const bool found = shell.pathOf(item, path.data()) != 0;
  shell.release(item);
  // An item without a path, or with one longer than the shell's buffer, cannot be written to.
  if (!found || path.front() == '\0') return std::nullopt;
  const std::string_view whole(path.data(), path.size());
  const std::string_view bytes = whole.substr(0, whole.find('\0'));
  return QString::fromLocal8Bit(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace korvel::control
