#include "control/printer_pages.h"

#include <QPrinter>

namespace korvel::control {

using output::pages::Orientation;
using output::pages::PageSelection;
using output::pages::PaintedPages;

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
