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

/// A search for the cells of a list that match, which may run on another thread.
struct ListFinding::Search {
  results::ResultList records;
  results::TextMatcher matcher;
  std::vector<ColumnIndex> columns;
  std::shared_ptr<const results::MatchingCells> cells = {};
  std::optional<Error> failure = {};

  void run(const std::stop_token& stop) {
    try {
      cells = std::make_shared<const results::MatchingCells>(records, matcher, columns, stop);
    } catch (const Error& error) {
      failure = error;
    }
  }
};

ListFinding::ListFinding(ListArea& area, Hooks hooks)
    : area_(area), hooks_(std::move(hooks)), escape_(new QShortcut(Qt::Key_Escape, &area.list)), work_(nullptr) {
  ui::FindBar& bar = *area_.find;
  connect(&bar, &ui::FindBar::requestChanged, this, [this] { search(); });
  connect(&bar, &ui::FindBar::nextRequested, this, [this] { step(SearchDirection::forward); });
  connect(&bar, &ui::FindBar::previousRequested, this, [this] { step(SearchDirection::backward); });
  connect(&bar, &ui::FindBar::filterRequested, this, [this] { filter(); });
  connect(&bar, &ui::FindBar::closeRequested, this, [this] { close(); });
  // In the list Esc closes the bar that belongs to it.
  escape_->setContext(Qt::WidgetShortcut);
  escape_->setEnabled(false);
  connect(escape_, &QShortcut::activated, this, [this] { close(); });
  const ResultListModel& model = area_.list.listModel();
  // Other rows make the hits of the search invalid that is under way, too.
  connect(&model, &QAbstractItemModel::modelAboutToBeReset, this, [this] { found_.reset(); });
  connect(&model, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] { found_.reset(); });
  connect(&model, &QAbstractItemModel::modelReset, this, [this] { followRows(); });
  connect(&model, &QAbstractItemModel::layoutChanged, this, [this] { followRows(); });
  connect(area_.list.selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
    if (found_) showCount();
  });
}

std::vector<ColumnIndex> ListFinding::shownColumns() const {
  std::vector<ColumnIndex> columns;
  for (const int column : area_.list.shownColumns()) columns.push_back({static_cast<std::size_t>(column)});
  return columns;
}

void ListFinding::open() {
  const QModelIndex current = area_.list.currentIndex();
  beganAt_ = current.isValid() ? current.row() : std::max(0, area_.list.rowAt(0));
  const bool wasShown = !area_.find->isHidden();
  showBar(true);
  area_.find->open();
  if (!wasShown) search();
}

void ListFinding::change(const ui::FindRequest& request) {
  const QModelIndex current = area_.list.currentIndex();
  beganAt_ = std::max(0, current.row());
  changesFilter_ = true;
  showBar(true);
  area_.find->open(request);
  search();
}

void ListFinding::close() {
  if (area_.find->isHidden()) return;
  showBar(false);
  forget();
  changesFilter_ = false;
  area_.list.setFocus(Qt::OtherFocusReason);
  hooks_.closed();
}

void ListFinding::showBar(bool shown) {
  area_.find->setVisible(shown);
  // Without the bar the key means what it means to the host.
  escape_->setEnabled(shown);
}

void ListFinding::forget() {
  work_.stop();
  then_ = nullptr;
  cells_.reset();
  found_.reset();
  hit_.reset();
  markHits(false);
}

void ListFinding::search() {
  hit_.reset();
  find([this] { goTo(found_->firstFrom(position(beganAt_))); });
}

void ListFinding::find(std::function<void()> then) {
  work_.stop();
  cells_.reset();
  found_.reset();
  if (area_.find->isHidden()) return;
  constexpr unsigned markSteps = results::mostPatternSteps / 10;
  matcher_ = findMatcher(request());
  marks_ = findMatcher(request(), markSteps);
  markHits(false);
  if (!matcher_.matcher) {
    if (matcher_.problem.isEmpty())
      area_.find->showNothing();
    else
      area_.find->showProblem([problem = matcher_.problem] { return ownText("find.badExpression").arg(problem); });
    return;
  }
  try {
    const auto search = std::make_shared<Search>(Search{list().recordsOnly(), *matcher_.matcher, shownColumns()});
    then_ = std::move(then);
    if (request().regularExpression) {
      area_.find->showSearching();
      work_.start([search](const std::stop_token& stop) { search->run(stop); }, [this, search] { finish(*search); });
    } else {
      search->run({});
      finish(*search);
    }
  } catch (const Error& failure) {
    fail(failure);
  }
}

void ListFinding::finish(const Search& search) {
  const auto then = std::exchange(then_, nullptr);
  if (search.failure)
    fail(*search.failure);
  else if (count(search.cells))
    then();
}

bool ListFinding::count(const std::shared_ptr<const results::MatchingCells>& cells) {
  try {
    found_ = std::make_unique<results::FoundCells>(list(), cells);
  } catch (const Error& failure) {
    fail(failure);
    return false;
  }
  cells_ = cells;
  markHits(true);
  return true;
}

void ListFinding::fail(const Error& failure) {
  forget();
  area_.find->showProblem([failure] { return failureText(failure); });
}

void ListFinding::followRows() {
  if (area_.find->isHidden()) return;
  // Filters and sorting show the same records, mostly with the same texts.
  if (!cells_ || !cells_->areOf(list()))
    find([this] { showCount(); });
  else if (count(std::shared_ptr(cells_)))
    showCount();
}

bool ListFinding::isUpToDate() const {
  const std::vector<ColumnIndex> columns = shownColumns();
  return found_ && std::equal(columns.begin(), columns.end(), found_->columns().begin(), found_->columns().end());
}

void ListFinding::filter() {
  const auto use = [this] {
    showCount();
    if (!canFilter()) return;
    // The filter shows other rows, and finds other hits in them.
    const auto cells = cells_;
    hooks_.filter(request(), *cells);
  };
  if (work_.isRunning())
    then_ = use;
  else if (isUpToDate())
    use();
  else
    find(use);
}

bool ListFinding::canFilter() const {
  return found_ && !matcher_.hasGivenUp() && (found_->count() > 0 || (changesFilter_ && !cells_->isEmpty()));
}

void ListFinding::step(SearchDirection direction) {
  if (area_.find->isHidden()) {
    if (request().text.isEmpty() || !findMatcher(request()).matcher) {
      open();
      return;
    }
    showBar(true);
  }
  if (work_.isRunning())
    then_ = [this, direction] { goOn(direction); };
  else if (isUpToDate())
    goOn(direction);
  else
    find([this, direction] { goOn(direction); });
}

void ListFinding::goOn(SearchDirection direction) {
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
  if (matcher_.hasGivenUp()) {
    area_.find->showProblem([] { return ownText("find.tooMuch"); });
    return;
  }
  const auto hit = currentHit();
  area_.find->showCount(hit ? found_->numberOf(*hit) : 0, found_->count());
  area_.find->enableFilter(canFilter());
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
  if (!found_ || !marks_.matcher) return {};
  const ColumnIndex column{static_cast<std::size_t>(index.column())};
  const auto columns = found_->columns();
  const auto place = std::find(columns.begin(), columns.end(), column);
  const results::RowId record = list().rowId(position(index.row()));
  if (place == columns.end() || !cells_->contains(record, static_cast<std::size_t>(place - columns.begin()))) return {};
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
  for (const results::TextSpan& span : marks_.matcher->spansIn(looksAtAll ? value : value.substr(0, shownBytes))) {
    const qsizetype from = shownBefore(span.begin);
    marks.push_back({from, std::max<qsizetype>(1, shownBefore(span.end) - from), isCurrent});
  }
  // Nobody knows where.
  if (marks.empty() && marks_.hasGivenUp()) marks.push_back({0, shown.size(), isCurrent});
  // It lies behind what the cell shows.
  if (marks.empty()) marks.push_back({shown.size() - 1, 1, isCurrent});
  return marks;
}

}  // namespace korvel::control
