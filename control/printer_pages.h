#pragma once

#include "output/pages/report_pages.h"

class QPrinter;
class QWidget;

namespace korvel::control {

/// The toolkit's dialog for a printer and its options; false for a cancelled one.
[[nodiscard]] bool showPrintDialog(QWidget* owner, QPrinter& printer);

/// The pages and copies that were chosen for a printer, as far as it does not see to them by itself.
[[nodiscard]] output::pages::PageSelection pageSelection(const QPrinter& printer);

/// Prints what was chosen; a print that fails or is cancelled is withdrawn. Throws what paintReport throws.
output::pages::PaintedPages printPages(output::ReportSource& report, QPrinter& printer,
                                       const output::pages::PageTexts& texts,
                                       const output::pages::PageProgress& progress);

}  // namespace korvel::control
