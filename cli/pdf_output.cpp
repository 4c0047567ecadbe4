#include "cli/pdf_output.h"

#include <QDateTime>
#include <QString>

#include "cli/offscreen_drawing.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"

namespace korvel::cli {

QString printedAt(const QDateTime& time) {
  return QStringLiteral("Printed ") + time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void writePdf(const CaptionedList& list, const output::ByteSink& sink, std::ostream& /*err*/) {
  const OffscreenDrawing drawing;
  const output::ReportList reported{list.caption, &list.list};
  output::ListSource source({&reported, 1}, {});
  output::pages::PageTexts texts;
  texts.printedAt = printedAt(QDateTime::currentDateTime());
  texts.note = QStringLiteral("KorvelAudit Report");
  texts.remark = QString::fromStdString(list.remark);
  output::pages::writePdf(source, texts, sink);
}

}  // namespace korvel::cli
