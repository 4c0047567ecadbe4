#include "control/print_dialog.h"

#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>

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

output::pages::PageSelection pageSelection(const QPrinter& printer) {
  output::pages::PageSelection selection;
  if (printer.printRange() == QPrinter::PageRange) selection.ranges = printer.pageRanges();
  if (!printer.supportsMultipleCopies()) selection.copies = printer.copyCount();
  selection.collated = printer.collateCopies();
  return selection;
}

}  // namespace korvel::control
