#include "control/print_dialog.h"

#include <QPointer>
#include <QPrintDialog>

namespace korvel::control {

bool showPrintDialog(QWidget* owner, QPrinter& printer) {
  const QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, owner);
  // Pages are chosen here, not by the printer's service: a file has none.
  dialog->setOption(QAbstractPrintDialog::PrintPageRange);
  dialog->setOption(QAbstractPrintDialog::PrintCollateCopies);
  const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
  delete dialog;
  return chosen;
}

}  // namespace korvel::control
