// The toolkit's dialogs for fonts, folders and printers.
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QPointer>

#include "control/printer_pages.h"
#include "control/system_dialogs.h"

namespace korvel::control {

std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current) {
  const QPointer<QFontDialog> dialog = new QFontDialog(current, owner);
  const QFont offered = dialog->currentFont();
  const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
  QFont chosen = accepted ? dialog->selectedFont() : QFont();
  delete dialog;
  if (!accepted) return std::nullopt;
  if (chosen == offered) return current;
  if (chosen.families() == offered.families()) chosen.setFamilies(current.families());
  if (chosen.pointSizeF() == offered.pointSizeF() && current.pointSizeF() > 0)
    chosen.setPointSizeF(current.pointSizeF());
  return chosen;
}

std::optional<QString> chooseSystemFolder(QWidget* owner, const QString& title, bool showFiles,
                                          const QString& beginning) {
  const QPointer<QFileDialog> dialog = new QFileDialog(owner, title);
  if (QFileInfo(beginning).isDir()) dialog->setDirectory(beginning);
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly, !showFiles);
  const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
  const QString folder = chosen ? dialog->selectedFiles().value(0) : QString();
  delete dialog;
  return folder.isEmpty() ? std::nullopt : std::optional(folder);
}

bool chooseSystemPrinter(QWidget* owner, QPrinter& printer) {
  // Without a printer it offers a file.
  return showPrintDialog(owner, printer);
}

}  // namespace korvel::control
