#pragma once

#include "output/pages/report_pages.h"

class QPrinter;
class QWidget;

namespace korvel::control {

/// The toolkit's dialog for a printer and its options; false for a cancelled one.
[[nodiscard]] bool showPrintDialog(QWidget* owner, QPrinter& printer);

/// The pages and copies chosen for a printer that the printer does not handle itself.
[[nodiscard]] output::pages::PageSelection pageSelection(const QPrinter& printer);

/// Prints the chosen pages; a print that fails or is cancelled is aborted. Throws what paintReport throws.
output::pages::PaintedPages printPages(output::ReportSource& report, QPrinter& printer,
                                       const output::pages::PageTexts& texts,
                                       const output::pages::PageProgress& progress);

}  // namespace korvel::control
