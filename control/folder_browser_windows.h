#pragma once

#include <windows.h>

#include <shlobj.h>

#include <QString>
#include <optional>

namespace korvel::control {

/// The shell's functions for choosing folders; replaced by tests.
struct FolderShell {
  LPITEMIDLIST(WINAPI* browse)(LPBROWSEINFOA);
  BOOL(WINAPI* pathOf)(LPCITEMIDLIST, LPSTR);
  void(WINAPI* release)(LPVOID);
};

/// Shows the shell's dialog under `title`. The path is returned exactly as the shell gives it: that of a drive ends in
/// a backslash. Starts at the folder `beginning`, unless that is empty. Nothing for a cancelled dialog, and for an item
/// without a path. Texts go through the system's code page.
[[nodiscard]] std::optional<QString> browseForFolder(const FolderShell& shell, const QString& title, bool showFiles,
                                                     const QString& beginning = {});

}  // namespace korvel::control
