// Fonts, folders and printers as the toolkit asks for them.
#include <QFileDialog>
#include <QFontDialog>
#include <QPointer>

#include "control/print_dialog.h"
#include "control/system_dialogs.h"

namespace korvel::control {

std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current) {
  bool chosen = false;
  const QFont font = QFontDialog::getFont(&chosen, current, owner);
  return chosen ? std::optional(font) : std::nullopt;
}

std::optional<QString> chooseSystemFolder(QWidget* owner, const QString& title, bool showFiles) {
  const QPointer<QFileDialog> dialog = new QFileDialog(owner, title);
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
