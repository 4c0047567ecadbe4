#include "control/print_dialog.h"

#include <QPointer>
#include <QPrintDialog>

namespace korvel::control {

bool showPrintDialog(QWidget* owner, QPrinter& printer) {
  const QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, owner);
  // The report is printed whole.
  dialog->setOption(QAbstractPrintDialog::PrintPageRange, false);
  const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
  delete dialog;
  return chosen;
}

}  // namespace korvel::control
