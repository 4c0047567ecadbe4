#include "control/printer_pages.h"

#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>

namespace korvel::control {

using output::pages::Orientation;
using output::pages::PageSelection;
using output::pages::PaintedPages;

bool showPrintDialog(QWidget* owner, QPrinter& printer) {
  const QPointer<QPrintDialog> dialog = new QPrintDialog(&printer, owner);
  // Pages are chosen here, not by the printer's service: a file has none.
  dialog->setOption(QAbstractPrintDialog::PrintPageRange);
  dialog->setOption(QAbstractPrintDialog::PrintCollateCopies);
  const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
  delete dialog;
  return chosen;
}

PageSelection pageSelection(const QPrinter& printer) {
  PageSelection selection;
  if (printer.printRange() == QPrinter::PageRange) selection.ranges = printer.pageRanges();
  if (!printer.supportsMultipleCopies()) selection.copies = printer.copyCount();
  selection.collated = printer.collateCopies();
  return selection;
}

PaintedPages printPages(output::ReportSource& report, QPrinter& printer, const output::pages::PageTexts& texts,
                        const output::pages::PageProgress& progress) {
  try {
    const PaintedPages painted =
        output::pages::paintReport(report, printer, texts, Orientation::asFits, progress, pageSelection(printer));
    if (painted.cancelled) printer.abort();
    return painted;
  } catch (...) {
    printer.abort();
    throw;
  }
}

}  // namespace korvel::control
