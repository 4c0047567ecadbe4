#include "control/result_list_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

#include "control/screen_measure.h"

namespace korvel::control {
namespace {

/// The cell as spreadsheet programs read it from tab-separated lines: in quotes, its own doubled, where it holds what
/// separates cells and lines, or would be taken for a cell in quotes.
QString tabSeparatedCell(const QString& text) {
  const auto separates = [](QChar c) {
    return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
  };
  if (!text.startsWith(QLatin1Char('"')) && std::none_of(text.begin(), text.end(), separates)) return text;
  QString quoted = text;
  quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
  return QLatin1Char('"') + quoted + QLatin1Char('"');
}

}  // namespace

ResultListView::ResultListView(ResultListModel& model, QWidget* parent) : ResultTable(parent), model_(model) {
  setModel(&model_);
}

void ResultListView::applyColumnWidths() {
  const auto& columns = model_.list().columns();
  for (std::size_t column = 0; column < columns.size(); ++column)
    setColumnTwips(static_cast<int>(column), columns[column].width);
}

void ResultListView::setColumnTwips(int column, Twips width) {
  if (column < 0 || column >= model_.columnCount()) return;
  setColumnHidden(column, width <= Twips{0});
  if (width > Twips{0}) setColumnWidth(column, std::max(1, ScreenMeasure(*this).horizontal(width)));
}

Twips ResultListView::columnTwips(int column) const {
  return ScreenMeasure(*this).horizontalTwips(columnWidth(column));
}

void ResultListView::showSortIcon() {
  const results::ResultList& list = model_.list();
  switch (list.headerIcon(list.sortKey())) {
    case results::HeaderIcon::none:
      header()->showSort(-1, Qt::AscendingOrder);
      break;
    case results::HeaderIcon::ascending:
      header()->showSort(static_cast<int>(list.sortKey().value), Qt::AscendingOrder);
      break;
    case results::HeaderIcon::descending:
      header()->showSort(static_cast<int>(list.sortKey().value), Qt::DescendingOrder);
      break;
  }
}

void ResultListView::setListFont(const QFont& font) {
  QFont changed = this->font();
  changed.setFamilies({font.family()});
  if (font.pointSizeF() > 0)
    changed.setPointSizeF(font.pointSizeF());
  else
    changed.setPixelSize(font.pixelSize());
  changed.setBold(font.bold());
  changed.setItalic(font.italic());
  setFont(changed);
}

void ResultListView::clickHeader(int column) {
  const QModelIndex current = currentIndex();
  const bool followed = current.isValid() && viewport()->rect().intersects(visualRect(current));
  model_.clickColumn(column);
  showSortIcon();
  // Who looks at a record keeps looking at it; who does not sees the new order from its beginning.
  if (followed)
    scrollTo(currentIndex().siblingAtColumn(column), PositionAtCenter);
  else
    verticalScrollBar()->setValue(verticalScrollBar()->minimum());
}

QString ResultListView::selectedText() const {
  std::vector<int> columns;
  for (int place = 0; place < header()->count(); ++place) {
    const int column = header()->logicalIndex(place);
    if (!isColumnHidden(column)) columns.push_back(column);
  }
  std::vector<std::pair<int, int>> ranges;
  const QItemSelection selection = selectionModel()->selection();
  for (const QItemSelectionRange& range : selection) ranges.emplace_back(range.top(), range.bottom());
  std::sort(ranges.begin(), ranges.end());

  QString text;
  int next = 0;
  for (const auto& range : ranges) {
    for (int row = std::max(range.first, next); row <= range.second; ++row) {
      for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) text += QLatin1Char('\t');
        text += tabSeparatedCell(model_.index(row, columns[i]).data().toString());
      }
      text += QLatin1Char('\n');
      next = row + 1;
    }
  }
  return text;
}

void ResultListView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    const QString text = selectedText();
    if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
    event->accept();
    return;
  }
  ResultTable::keyPressEvent(event);
}

}  // namespace korvel::control
