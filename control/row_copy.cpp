#include "control/row_copy.h"

#include <QMimeData>
#include <algorithm>
#include <memory>

#include "control/result_list_model.h"

namespace korvel::control {
namespace {

/// The cell as spreadsheet programs read it from tab-separated lines: quoted, with its quotes doubled, where it
/// contains separators or begins with a quote.
QString tabSeparatedCell(const QString& text) {
  const auto separates = [](QChar c) {
    return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
  };
  if (!text.startsWith(QLatin1Char('"')) && std::none_of(text.begin(), text.end(), separates)) return text;
  QString quoted = text;
  quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
  return QLatin1Char('"') + quoted + QLatin1Char('"');
}

/// `c` escaped for HTML; empty where it needs no escape.
QLatin1String markup(QChar c) {
  switch (c.unicode()) {
    case u'<':
      return QLatin1String("&lt;");
    case u'>':
      return QLatin1String("&gt;");
    case u'&':
      return QLatin1String("&amp;");
    case u'"':
      return QLatin1String("&quot;");
    case u'\n':
      return QLatin1String("<br>");
    default:
      return {};
  }
}

void appendHtml(QString& html, const QString& text) {
  for (qsizetype at = 0; at < text.size(); ++at) {
    QChar c = text[at];
    // A line ends with CR LF, with LF, or with CR.
    if (c == QLatin1Char('\r')) {
      if (at + 1 < text.size() && text[at + 1] == QLatin1Char('\n')) continue;
      c = QLatin1Char('\n');
    }
    const QLatin1String written = markup(c);
    if (written.isEmpty())
      html += c;
    else
      html += written;
  }
}

// Spreadsheets take a cell of this format as text: "007" keeps its zeros, "=1+1" its sign, "3/4" is no date.
constexpr auto htmlHead = QLatin1String(
    "<html><head><meta charset=\"utf-8\"><style>td{mso-number-format:\"\\@\";white-space:pre-wrap}"
    "br{mso-data-placement:same-cell}</style></head><body><table>\n");
constexpr auto htmlFoot = QLatin1String("</table></body></html>");

}  // namespace

void RowCopy::beginRow() {
  rowIsEmpty_ = true;
  html_ += QLatin1String("<tr>");
}

void RowCopy::addCell(const QString& text, CellKind kind) {
  if (!rowIsEmpty_) text_ += QLatin1Char('\t');
  rowIsEmpty_ = false;
  text_ += tabSeparatedCell(text);
  const bool caption = kind == CellKind::caption;
  html_ += QLatin1String(caption ? "<th align=\"left\">" : "<td>");
  appendHtml(html_, text);
  html_ += QLatin1String(caption ? "</th>" : "</td>");
}

void RowCopy::endRow() {
  text_ += QLatin1Char('\n');
  html_ += QLatin1String("</tr>\n");
}

QString RowCopy::html() const {
  return htmlHead + html_ + htmlFoot;
}

QMimeData* RowCopy::mimeData() const {
  auto data = std::make_unique<QMimeData>();
  data->setText(text_);
  data->setHtml(html());
  return data.release();
}

std::optional<RowCopy> copyRows(const ResultListModel& model, const std::vector<int>& columns,
                                const std::vector<RowSpan>& rows, qsizetype limit) {
  RowCopy copy(limit);
  copy.beginRow();
  for (const int column : columns)
    copy.addCell(model.headerData(column, Qt::Horizontal).toString(), RowCopy::CellKind::caption);
  copy.endRow();
  for (const RowSpan& span : rows) {
    for (int row = span.first; row <= span.last; ++row) {
      copy.beginRow();
      for (const int column : columns) copy.addCell(model.index(row, column).data().toString());
      copy.endRow();
      if (copy.isFull()) return std::nullopt;
    }
  }
  return copy;
}

}  // namespace korvel::control
