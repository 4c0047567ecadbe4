#pragma once

#include <windows.h>

#include <shlobj.h>

#include <QString>
#include <optional>

namespace korvel::control {

/// What the shell has for choosing folders; tests stand in for it.
struct FolderShell {
  LPITEMIDLIST(WINAPI* browse)(LPBROWSEINFOA);
  BOOL(WINAPI* pathOf)(LPCITEMIDLIST, LPSTR);
  void(WINAPI* release)(LPVOID);
};

/// Shows the shell's dialog under `title`. The path is the shell's to the letter: that of a drive ends in a backslash.
/// Begins at the folder `beginning`, unless that is empty. Nothing for a cancelled dialog, and for what the shell gives
/// no path for. Texts go through the system's code page.
[[nodiscard]] std::optional<QString> browseForFolder(const FolderShell& shell, const QString& title, bool showFiles,
                                                     const QString& beginning = {});

}  // namespace korvel::control
