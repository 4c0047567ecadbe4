// Fonts and folders as Windows asks for them.
#include "control/system_dialogs.h"

#include "control/folder_browser_windows.h"
#include "control/font_chooser_windows.h"
#include "control/native_window_windows.h"

namespace korvel::control {

std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current) {
  const WindowsStopped stopped;
  return chooseFontWith(&ChooseFontW, nativeWindow(owner), current);
}

std::optional<QString> chooseSystemFolder(QWidget* /*owner*/, const QString& title, bool showFiles) {
  // The dialog deliberately has no owner; nothing behind it may be used all the same.
  const WindowsStopped stopped;
  return browseForFolder({&SHBrowseForFolderA, &SHGetPathFromIDListA, &CoTaskMemFree}, title, showFiles);
}

}  // namespace korvel::control
