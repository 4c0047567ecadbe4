// Windows' dialogs for fonts, folders and printers.
#include "control/system_dialogs.h"

#include <QFileDialog>
#include <QPrinter>

#include "control/folder_browser_windows.h"
#include "control/font_chooser_windows.h"
#include "control/native_window_windows.h"
#include "control/printer_pages.h"
#include "control/texts.h"

namespace korvel::control {

std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current) {
  const HWND window = nativeWindow(owner);
  const DisabledWindows disabled(window);
  return chooseFontWith(&ChooseFontW, window, current);
}

std::optional<QString> chooseSystemFolder(QWidget* /*owner*/, const QString& title, bool showFiles,
                                          const QString& beginning) {
  // The dialog deliberately has no owner, but the windows behind it must not be usable.
  const DisabledWindows disabled;
  return browseForFolder({&SHBrowseForFolderA, &SHGetPathFromIDListA, &CoTaskMemFree}, title, showFiles, beginning);
}

bool chooseSystemPrinter(QWidget* owner, QPrinter& printer) {
  // The system's dialog is for printers only; without a printer it does not appear.
  if (printer.outputFormat() == QPrinter::NativeFormat) return showPrintDialog(owner, printer);
  const QString file = QFileDialog::getSaveFileName(owner, ownText("print.intoFile"), QStringLiteral("report.pdf"),
                                                    QStringLiteral("PDF (*.pdf)"));
  if (file.isEmpty()) return false;
  printer.setOutputFileName(file);
  return true;
}

}  // namespace korvel::control
