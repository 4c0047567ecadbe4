#include "cli/pdf_output.h"

#include "cli/offscreen_drawing.h"
#include "cli/tool_page_head.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"

namespace korvel::cli {

void writePdf(const CaptionedList& list, const output::ByteSink& sink, std::ostream& /*err*/) {
  const OffscreenDrawing drawing;
  const output::ReportList reported{list.caption, &list.list};
  output::ListSource source({&reported, 1}, {});
  output::pages::PageTexts texts;
  texts.head = list.head ? list.head()
                         : toolPageHead({}, {.caption = std::string(list.caption),
                                             .rows = list.list.rowCount(),
                                             .ofRows = list.list.rowCount(),
                                             .remark = list.remark});
  output::pages::writePdf(source, texts, sink);
}

}  // namespace korvel::cli
