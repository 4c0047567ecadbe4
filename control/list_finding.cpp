#include "control/list_finding.h"

#include <QHeaderView>
#include <QShortcut>
#include <algorithm>
#include <string>
#include <utility>

#include "base/error.h"
#include "control/texts.h"

namespace korvel::control {
namespace {

using results::ColumnIndex;
using results::FoundCell;
using results::RowPosition;
using results::SearchDirection;

/// How much of a value is searched for the places of its hits: what a cell can show.
constexpr std::size_t shownBytes = 4 * static_cast<std::size_t>(ui::RowDelegate::shownCharacters);

RowPosition position(int row) {
  return {static_cast<std::size_t>(std::max(0, row))};
}

}  // namespace

ListFinding::ListFinding(ListArea& area, std::function<void()> filter)
    : area_(area), escape_(new QShortcut(Qt::Key_Escape, &area.list)) {
  ui::FindBar& bar = *area_.find;
  connect(&bar, &ui::FindBar::requestChanged, this, [this] { search(); });
  connect(&bar, &ui::FindBar::nextRequested, this, [this] { step(SearchDirection::forward); });
  connect(&bar, &ui::FindBar::previousRequested, this, [this] { step(SearchDirection::backward); });
  connect(&bar, &ui::FindBar::filterRequested, this, std::move(filter));
  connect(&bar, &ui::FindBar::closeRequested, this, [this] { close(); });
  // In the list Esc closes the bar that belongs to it.
  escape_->setContext(Qt::WidgetShortcut);
  escape_->setEnabled(false);
  connect(escape_, &QShortcut::activated, this, [this] { close(); });
  connect(&area_.list.listModel(), &QAbstractItemModel::modelReset, this, [this] {
    if (searchAgain()) showCount();
  });
  connect(&area_.list.listModel(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { found_.reset(); });
  // Sorting by entry numbers shows other texts.
  connect(&area_.list.listModel(), &QAbstractItemModel::layoutChanged, this, [this] {
    if (searchAgain()) showCount();
  });
  connect(area_.list.selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
    if (found_) showCount();
  });
}

std::vector<ColumnIndex> ListFinding::shownColumns() const {
  std::vector<ColumnIndex> columns;
  for (const int column : area_.list.shownColumns()) columns.push_back({static_cast<std::size_t>(column)});
  return columns;
}

void ListFinding::open(const std::optional<QString>& text) {
  const QModelIndex current = area_.list.currentIndex();
  beganAt_ = current.isValid() ? current.row() : std::max(0, area_.list.rowAt(0));
  const bool wasShown = !area_.find->isHidden();
  showBar(true);
  area_.find->open(text.value_or(QString()));
  if (!wasShown && !text) search();
}

void ListFinding::close() {
  if (area_.find->isHidden()) return;
  showBar(false);
  forget();
  area_.list.setFocus(Qt::OtherFocusReason);
}

void ListFinding::showBar(bool shown) {
  area_.find->setVisible(shown);
  // Without the bar the key means what it means to the host.
  escape_->setEnabled(shown);
}

void ListFinding::forget() {
  found_.reset();
  hit_.reset();
  markHits(false);
}

void ListFinding::search() {
  hit_.reset();
  matcher_ = findMatcher(request());
  if (!searchAgain()) return;
  goTo(found_->firstFrom(position(beganAt_)));
}

bool ListFinding::searchAgain() {
  found_.reset();
  if (area_.find->isHidden()) return false;
  if (!matcher_.matcher) {
    markHits(false);
    if (matcher_.problem.isEmpty())
      area_.find->showNothing();
    else
      area_.find->showProblem(matcher_.problem);
    return false;
  }
  try {
    found_ = std::make_unique<results::FoundCells>(list(), *matcher_.matcher, shownColumns());
  } catch (const Error& failure) {
    forget();
    area_.find->showProblem(failureText(failure));
    return false;
  }
  markHits(true);
  return true;
}

void ListFinding::step(SearchDirection direction) {
  if (area_.find->isHidden()) {
    showBar(true);
    matcher_ = findMatcher(request());
    if (!matcher_.matcher) {
      open();
      return;
    }
  }
  // Columns may have been moved, shown or hidden since.
  const std::vector<ColumnIndex> columns = shownColumns();
  const bool same =
      found_ && std::equal(columns.begin(), columns.end(), found_->columns().begin(), found_->columns().end());
  if (!same && !searchAgain()) return;
  std::optional<FoundCell> next;
  const QModelIndex current = area_.list.currentIndex();
  if (const auto hit = currentHit())
    next = found_->next(*hit, direction);
  else if (direction == SearchDirection::forward)
    next = found_->firstFrom(position(current.row()));
  else
    next = found_->next({position(current.row()), 0}, direction);
  goTo(next);
  if (hit_) beganAt_ = area_.list.currentIndex().row();
}

std::optional<FoundCell> ListFinding::currentHit() const {
  const int row = area_.list.currentIndex().row();
  if (!hit_ || !found_ || row < 0 || list().rowId(position(row)) != hit_->record) return std::nullopt;
  const auto columns = found_->columns();
  const auto at = std::find(columns.begin(), columns.end(), hit_->column);
  if (at == columns.end()) return std::nullopt;
  return FoundCell{position(row), static_cast<std::size_t>(at - columns.begin())};
}

void ListFinding::goTo(std::optional<FoundCell> cell) {
  hit_.reset();
  if (cell) {
    hit_ = Hit{list().rowId(cell->row), found_->columns()[cell->place]};
    area_.list.showCell(static_cast<int>(cell->row.value), static_cast<int>(hit_->column.value));
  }
  area_.list.viewport()->update();
  showCount();
}

void ListFinding::showCount() {
  if (!found_) return;
  if (matcher_.gaveUp && *matcher_.gaveUp) {
    area_.find->showProblem(ownText("find.tooMuch"));
    return;
  }
  const auto hit = currentHit();
  area_.find->showCount(hit ? found_->numberOf(*hit) : 0, found_->count());
}

void ListFinding::showTexts() {
  area_.find->setTexts([](std::string_view key) { return ownText(key); });
}

void ListFinding::markHits(bool marked) {
  if (marked)
    area_.list.rowDelegate()->setMarks(
        [this](const QModelIndex& index, const QString& shown) { return marksOf(index, shown); });
  else
    area_.list.rowDelegate()->setMarks({});
  area_.list.viewport()->update();
}

std::vector<ui::TextMark> ListFinding::marksOf(const QModelIndex& index, const QString& shown) const {
  if (!found_ || !matcher_.matcher) return {};
  const ColumnIndex column{static_cast<std::size_t>(index.column())};
  const auto columns = found_->columns();
  const auto place = std::find(columns.begin(), columns.end(), column);
  const results::RowId record = list().rowId(position(index.row()));
  if (place == columns.end() || !found_->contains(record, static_cast<std::size_t>(place - columns.begin()))) return {};
  const bool isCurrent = hit_ && hit_->record == record && hit_->column == column;
  const std::string_view value = list().text(position(index.row()), column);
  // The characters of a cell before those bytes of its value; all of what is not shown is the ellipsis.
  const auto shownBefore = [&](std::size_t bytes) {
    const QString before = fromUtf8(value.substr(0, std::min(bytes, shownBytes)));
    const bool cut = before.size() > ui::RowDelegate::shownCharacters;
    return cut ? shown.size() - 1 : ui::RowDelegate::shownText(before).size();
  };
  std::vector<ui::TextMark> marks;
  const bool looksAtAll = value.size() <= shownBytes || request().wholeValue;
  for (const results::TextSpan& span : matcher_.matcher->spansIn(looksAtAll ? value : value.substr(0, shownBytes))) {
    const qsizetype from = shownBefore(span.begin);
    marks.push_back({from, std::max<qsizetype>(1, shownBefore(span.end) - from), isCurrent});
  }
  // It lies behind what the cell shows.
  if (marks.empty()) marks.push_back({shown.size() - 1, 1, isCurrent});
  return marks;
}

}  // namespace korvel::control
