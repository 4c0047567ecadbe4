#include "ui/result_table.h"

#include <QEvent>

#include "ui/dialogs.h"
#include "ui/shown_text.h"

namespace korvel::ui {

ResultTable::ResultTable(QWidget* parent) : QTableView(parent) {
  setHorizontalHeader(new ResultHeader(this));
  setItemDelegate(new RowDelegate(this));
  setShowGrid(false);
  setAlternatingRowColors(true);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setTabKeyNavigation(false);  // Tab leaves the list
  setCornerButtonEnabled(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  measure();
}

ResultHeader* ResultTable::header() const {
  return qobject_cast<ResultHeader*>(horizontalHeader());
}

RowDelegate* ResultTable::rowDelegate() const {
  return qobject_cast<RowDelegate*>(itemDelegate());
}

void ResultTable::setRowHeader(QHeaderView* header) {
  setVerticalHeader(header);
  header->hide();
  header->setSectionResizeMode(QHeaderView::Fixed);
  measure();
}

void ResultTable::setEmptyText(const QString& text) {
  if (text == emptyText_) return;
  emptyText_ = text;
  // Assistive technology cannot read painted text.
  setAccessibleDescription(text);
  viewport()->update();
}

void ResultTable::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  // The text may contain a server's message: it is shown as plain text and cut.
  constexpr qsizetype maxCharacters = 2000;
  if (model() == nullptr || model()->rowCount(rootIndex()) == 0)
    paintEmptyMessage(*this, visibleFormats(emptyText_.left(maxCharacters)));
}

void ResultTable::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) measure();
}

void ResultTable::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  // The frame of the current row runs through all of its cells.
  for (const QModelIndex& index : {current, previous}) {
    if (index.isValid()) viewport()->update(0, visualRect(index).top(), viewport()->width(), rowHeight(index.row()));
  }
  showKeyColumn();
}

void ResultTable::focusInEvent(QFocusEvent* event) {
  QTableView::focusInEvent(event);
  showKeyColumn();
}

void ResultTable::focusOutEvent(QFocusEvent* event) {
  QTableView::focusOutEvent(event);
  showKeyColumn();
}

void ResultTable::showKeyColumn() {
  header()->setKeyColumn(hasFocus() ? currentIndex().column() : -1);
}

void ResultTable::measure() {
  const int height = listRowHeight(*this);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(height);
}

}  // namespace korvel::ui
