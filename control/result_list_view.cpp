#include "control/result_list_view.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "control/texts.h"
#include "control/widest_text.h"
#include "results/find_prefix.h"
#include "ui/screen_measure.h"

namespace korvel::control {
namespace {

/// Keys within this time, in milliseconds, belong to one search text.
constexpr qint64 typingPause = 1000;

/// Views search the ranges of a selection for every cell that they paint.
constexpr std::size_t maxRanges = 2000;

/// Keeps the horizontal scroll position while it exists.
class HorizontalScrollLock {
 public:
  explicit HorizontalScrollLock(QAbstractScrollArea& area) : bar_(area.horizontalScrollBar()), value_(bar_->value()) {}
  ~HorizontalScrollLock() { bar_->setValue(value_); }
  HorizontalScrollLock(const HorizontalScrollLock&) = delete;
  HorizontalScrollLock& operator=(const HorizontalScrollLock&) = delete;

 private:
  QScrollBar* bar_;
  int value_;
};

bool endsTyping(int key) {
  return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Left || key == Qt::Key_Right ||
         key == Qt::Key_Home || key == Qt::Key_End || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

}  // namespace

ResultListView::ResultListView(ResultListModel& model, QWidget* parent) : ResultTable(parent), model_(model) {
  // The selection is saved before the selection model would make an index for each of its rows, and restored later.
  connect(&model_, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] { saveSelection(); });
  setModel(&model_);
  connect(&model_, &QAbstractItemModel::layoutChanged, this, [this] { restoreSelection(); });
  // The toolkit would size the column by itself; the owner does it.
  disconnect(header(), &QHeaderView::sectionHandleDoubleClicked, this, nullptr);
  connect(header(), &ui::ResultHeader::filterRequested, this, &ResultListView::filterRequested);
  connect(header(), &QHeaderView::sectionHandleDoubleClicked, this, &ResultListView::fitRequested);
}

void ResultListView::applyColumnWidths() {
  const auto& columns = model_.list().columns();
  for (std::size_t column = 0; column < columns.size(); ++column)
    setColumnTwips(static_cast<int>(column), columns[column].width);
  for (int place = 0; place < header()->count(); ++place) header()->moveSection(header()->visualIndex(place), place);
}

void ResultListView::setColumnTwips(int column, Twips width) {
  if (column < 0 || column >= model_.columnCount()) return;
  setColumnHidden(column, width <= Twips{0});
  if (width > Twips{0}) setColumnWidth(column, std::max(1, ui::ScreenMeasure(*this).horizontal(width)));
}

void ResultListView::autoSizeColumn(int column) {
  if (column < 0 || column >= model_.columnCount() || isColumnHidden(column)) return;
  resizeColumnToContents(column);
}

int ResultListView::sizeHintForColumn(int column) const {
  if (column < 0 || column >= model_.columnCount()) return -1;
  ensurePolished();
  try {
    WidestText widest(font());
    model_.list().visitTexts({static_cast<std::size_t>(column)}, [&](std::string_view text) { widest.offer(text); });
    return ui::RowDelegate::cellWidth(this, widest.width());
  } catch (const std::exception&) {
    return ResultTable::sizeHintForColumn(column);  // memory ran out: by the visible rows
  }
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
  // A visible current record stays visible; otherwise the list shows the beginning of the new order.
  if (followed)
    scrollTo(currentIndex().siblingAtColumn(column), PositionAtCenter);
  else
    verticalScrollBar()->setValue(verticalScrollBar()->minimum());
}

int ResultListView::rowOf(results::RowId record) const {
  const results::ResultList& list = model_.list();
  for (std::size_t row = 0; row < list.rowCount(); ++row)
    if (list.rowId({row}) == record) return static_cast<int>(row);
  return -1;
}

int ResultListView::firstRowOf(std::span<const results::RowId> records) const {
  const results::ResultList& list = model_.list();
  if (const int row = rowOf(records.front()); row >= 0) return row;
  std::vector<bool> wanted(list.store()->rowCount());
  for (const results::RowId record : records) wanted[record.value] = true;
  for (std::size_t row = 0; row < list.rowCount(); ++row)
    if (wanted[list.rowId({row}).value]) return static_cast<int>(row);
  return static_cast<int>(list.rowCount()) - 1;
}

void ResultListView::setFilter(results::RowFilter filter) {
  constexpr std::size_t mostFollowing = 1000;
  const QModelIndex before = currentIndex();
  // The current record, and those that take its place where the filter hides it.
  std::vector<results::RowId> records;
  const std::size_t current = before.isValid() ? static_cast<std::size_t>(before.row()) : model_.list().rowCount();
  for (std::size_t row = current; row < model_.list().rowCount() && records.size() < mostFollowing; ++row)
    records.push_back(model_.list().rowId({row}));
  const int column = before.column();
  SavedSelection kept;
  kept.save(model_.list(), selectedSpans());
  {
    const HorizontalScrollLock lock(*this);
    model_.setFilter(std::move(filter));
  }
  saved_ = std::move(kept);
  restoreSelection();
  if (records.empty() || model_.list().rowCount() == 0) return;
  const int row = firstRowOf(records);
  const HorizontalScrollLock lock(*this);
  selectionModel()->setCurrentIndex(model_.index(row, column), QItemSelectionModel::NoUpdate);
  scrollTo(model_.index(row, column), PositionAtCenter);
}

void ResultListView::showCell(int row, int column) {
  const QModelIndex cell = model_.index(row, column);
  if (!cell.isValid()) return;
  selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(cell, EnsureVisible);
}

std::vector<int> ResultListView::shownColumns() const {
  std::vector<int> columns;
  for (int place = 0; place < header()->count(); ++place) {
    const int column = header()->logicalIndex(place);
    if (!isColumnHidden(column)) columns.push_back(column);
  }
  return columns;
}

std::vector<RowSpan> ResultListView::selectedSpans() const {
  std::vector<RowSpan> ranges;
  const QItemSelection selection = selectionModel()->selection();
  for (const QItemSelectionRange& range : selection) ranges.push_back({range.top(), range.bottom()});
  std::sort(ranges.begin(), ranges.end(), [](const RowSpan& a, const RowSpan& b) { return a.first < b.first; });
  std::vector<RowSpan> spans;
  for (const RowSpan& range : ranges) {
    if (!spans.empty() && range.first <= spans.back().last + 1)
      spans.back().last = std::max(spans.back().last, range.last);
    else
      spans.push_back(range);
  }
  return spans;
}

void ResultListView::copySelection() {
  const std::vector<RowSpan> rows = selectedSpans();
  if (rows.empty()) return;
  std::size_t count = 0;
  for (const RowSpan& span : rows)
    count += static_cast<std::size_t>(span.last) - static_cast<std::size_t>(span.first) + 1;
  QString refusal;
  try {
    if (const auto copy = copyRows(model_, shownColumns(), rows, copyLimit_))
      QGuiApplication::clipboard()->setMimeData(copy->mimeData());
    else
      refusal = ownText("list.copyTooMany").arg(countText(count));
  } catch (const std::bad_alloc&) {
    refusal = ownText("list.copyNoMemory").arg(countText(count));
  }
  if (!refusal.isEmpty()) Q_EMIT refused(refusal);
}

void ResultListView::saveSelection() {
  saved_.save(model_.list(), selectedSpans());
  if (!saved_.isEmpty()) selectionModel()->clearSelection();
}

void ResultListView::restoreSelection() {
  if (saved_.isEmpty()) return;
  const std::vector<RowSpan> spans = saved_.rowsIn(model_.list());
  const std::size_t count = saved_.count();
  saved_ = {};
  if (spans.size() > maxRanges) {
    Q_EMIT selectionScattered(count);
    return;
  }
  QItemSelection selection;
  for (const RowSpan& span : spans)
    selection.append({model_.index(span.first, 0), model_.index(span.last, model_.columnCount() - 1)});
  selectionModel()->select(selection, QItemSelectionModel::Select);
}

void ResultListView::goToRow(int row) {
  if (row < 0 || row >= model_.rowCount()) return;
  const std::vector<RowSpan> selected = selectedSpans();
  const bool several = selected.size() > 1 || (selected.size() == 1 && selected[0].first != selected[0].last);
  const HorizontalScrollLock lock(*this);
  selectionModel()->setCurrentIndex(model_.index(row, cursorColumn()),
                                    several ? QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate)
                                            : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

int ResultListView::cursorColumn() const {
  const QModelIndex current = currentIndex();
  if (current.isValid() && !isColumnHidden(current.column())) return current.column();
  const std::vector<int> columns = shownColumns();
  return columns.empty() ? 0 : columns.front();
}

bool ResultListView::isTyping() const {
  return !typed_.isEmpty() && !sinceTyped_.hasExpired(typingPause);
}

int ResultListView::searchColumn() const {
  const results::ResultList& list = model_.list();
  const int key = static_cast<int>(list.sortKey().value);
  if (list.isSorted() && key < model_.columnCount() && !isColumnHidden(key)) return key;
  const std::vector<int> columns = shownColumns();
  return columns.empty() ? -1 : columns.front();
}

int ResultListView::findRow(int column, const QString& beginning, int from) const {
  const auto row = results::findPrefix(model_.list(), {static_cast<std::size_t>(column)}, beginning.toStdString(),
                                       {static_cast<std::size_t>(from)});
  return row && row->value < static_cast<std::size_t>(model_.rowCount()) ? static_cast<int>(row->value) : -1;
}

/// Goes to the next row whose text in the sort column begins with the typed text. Repeating one letter steps through
/// the rows that begin with it.
void ResultListView::keyboardSearch(const QString& typed) {
  if (typed.isEmpty() || !typed.at(0).isPrint()) return;
  const bool typing = isTyping();
  typed_ = typing ? typed_ + typed : typed;
  sinceTyped_.start();
  const int column = searchColumn();
  if (column < 0) return;
  const int current = currentIndex().isValid() ? currentIndex().row() : -1;
  int row = findRow(column, typed_, typing ? std::max(current, 0) : current + 1);
  if (row < 0 && typed_.count(typed_.front()) == typed_.size()) row = findRow(column, typed_.left(1), current + 1);
  if (row < 0) return;
  selectionModel()->clearSelection();
  goToRow(row);
}

/// Scrolls the list by a column and moves the current cell with it.
void ResultListView::goToNeighbourColumn(int step) {
  const std::vector<int> columns = shownColumns();
  const auto found = std::find(columns.begin(), columns.end(), currentIndex().column());
  if (!currentIndex().isValid() || found == columns.end()) return;
  const auto at = (found - columns.begin()) + step;
  if (at < 0 || at >= static_cast<std::ptrdiff_t>(columns.size())) return;
  const int column = columns[static_cast<std::size_t>(at)];
  selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(column), QItemSelectionModel::NoUpdate);
  horizontalScrollBar()->setValue(header()->sectionPosition(column));
}

QModelIndex ResultListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  // Home and End mean the first and last row, not cells of the current one.
  if (action == MoveHome) return model_.index(0, cursorColumn());
  if (action == MoveEnd) return model_.index(model_.rowCount() - 1, cursorColumn());
  // Views do not scroll to a cell whose column has been hidden meanwhile.
  const QModelIndex to = ResultTable::moveCursor(action, modifiers);
  return to.isValid() ? to.siblingAtColumn(cursorColumn()) : to;
}

bool ResultListView::handleHeaderKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  const int column = cursorColumn();
  if (column >= model_.columnCount()) return false;
  if (modifiers == Qt::ControlModifier && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)) {
    Q_EMIT sortRequested(column);
    return true;
  }
  if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && event.key() == Qt::Key_F10) {
    const QWidget* const strip = header()->viewport();
    const int left = std::clamp(header()->sectionViewportPosition(column), 0, strip->width());
    Q_EMIT columnMenuRequested(strip->mapToGlobal(QPoint(left, strip->height())));
    return true;
  }
  if (modifiers == Qt::AltModifier && event.key() == Qt::Key_Down) {
    Q_EMIT filterRequested(column);
    return true;
  }
  return false;
}

bool ResultListView::handleFilterKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers();
  const bool shifted = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
  if (event.key() == Qt::Key_K && (shifted || modifiers == Qt::ControlModifier)) {
    const QModelIndex cell = currentIndex().siblingAtColumn(cursorColumn());
    if (!cell.isValid()) return true;
    if (shifted)
      Q_EMIT withoutRequested(cell);
    else
      Q_EMIT onlyRequested(cell);
    return true;
  }
  if (event.key() == Qt::Key_F && shifted) {
    Q_EMIT unfilterRequested();
    return true;
  }
  return false;
}

void ResultListView::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (endsTyping(key)) typed_.clear();
  if (event->matches(QKeySequence::Copy)) {
    copySelection();
  } else if (handleHeaderKey(*event) || handleFilterKey(*event)) {
    typed_.clear();
  } else if (plain && (key == Qt::Key_Return || key == Qt::Key_Enter) && currentIndex().isValid()) {
    Q_EMIT recordRequested(currentIndex().row());
  } else if (plain && (key == Qt::Key_Left || key == Qt::Key_Right)) {
    goToNeighbourColumn((key == Qt::Key_Right) == isLeftToRight() ? 1 : -1);
  } else if (plain && key == Qt::Key_Space && isTyping()) {
    keyboardSearch(event->text());
  } else {
    const HorizontalScrollLock lock(*this);
    ResultTable::keyPressEvent(event);
    return;
  }
  event->accept();
}

void ResultListView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPersistentModelIndex index = indexAt(event->position().toPoint());
  ResultTable::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && index.isValid()) Q_EMIT recordRequested(index.row());
}

}  // namespace korvel::control
