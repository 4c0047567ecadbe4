#include "output/pages/report_pages.h"

#include "output/pages/report_flow.h"

namespace korvel::output::pages {

PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation, const PageProgress& progress, const PageSelection& selection) {
  ReportFlow flow(report, device, texts, progress);
  const bool whole = flow.count(orientation) && flow.draw(selection);
  return {flow.drawn(), !whole, flow.pages()};
}

}  // namespace korvel::output::pages
