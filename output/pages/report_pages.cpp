#include "output/pages/report_pages.h"

#include "output/pages/report_flow.h"

namespace korvel::output::pages {

PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation, const PageProgress& progress) {
  ReportFlow flow(report, device, texts, progress);
  const bool whole = flow.count(orientation) && flow.drawAll();
  return {flow.drawn(), !whole};
}

}  // namespace korvel::output::pages
