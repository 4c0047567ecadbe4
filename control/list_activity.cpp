#include "control/list_activity.h"

#include <QApplication>
#include <QEvent>
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "control/activity_strip.h"
#include "control/texts.h"
#include "query/audit_record.h"
#include "query/query_failure.h"

namespace korvel::control {
namespace {

using query::ActivityStep;
using results::ColumnCondition;
using results::ColumnIndex;
using results::ResultList;

constexpr std::string_view timeColumn = "DateTime";

/// What bars may be stacked by, as far as the list has it.
std::vector<ColumnIndex> kindColumns(const ResultList& list) {
  std::vector<ColumnIndex> columns;
  for (const std::string_view name : {"EventType", "AuditType"})
    if (const auto column = query::auditColumnOf(list, name)) columns.push_back(*column);
  return columns;
}

bool isRangeOf(const ColumnCondition& condition, ColumnIndex column) {
  return condition.column == column && condition.range && !condition.excludes;
}

}  // namespace

/// What a worker counts, and what came of it.
struct ListActivity::Count {
  ResultList rows;
  /// The filter to count with, where it is not the one that the rows have.
  std::optional<results::RowFilter> filter;
  ColumnIndex time;
  std::optional<ColumnIndex> kind;
  std::optional<ActivityStep> asked;
  std::size_t mostBars;
  query::Activity activity{};
  std::optional<Error> failure{};

  void run() {
    failure = query::failureOf([this] {
      // They go as soon as they are counted.
      ResultList counted = std::exchange(rows, ResultList(results::RowFilling::whole));
      if (filter) counted.setFilter(std::move(*filter));
      activity = query::activityOf(counted, time, kind, asked.value_or(ActivityStep::hour), query::mostActivityKinds,
                                   mostBars);
    });
  }
};

ListActivity::ListActivity(ListArea& area, Filter filter) : area_(area), filter_(std::move(filter)), work_(this) {
  connect(&area_.list.listModel(), &QAbstractItemModel::modelReset, this, [this] { followRows(); });
}

void ListActivity::makeStrip() {
  ActivityStrip& made = area_.activityStrip();
  made.installEventFilter(this);
  connect(&made, &ActivityStrip::stepChosen, this, [this](ActivityStep step) {
    asked_ = step;
    isCounted_ = false;
    countLater();
  });
  connect(&made, &ActivityStrip::kindChosen, this, [this] {
    isCounted_ = false;
    countLater();
  });
  connect(&made, &ActivityStrip::leaveRequested, &area_.list, [this] { area_.list.setFocus(Qt::OtherFocusReason); });
  connect(&made.bars(), &ActivityBars::spanChosen, this, [this](const query::ActivitySpan& span) { filterBy(span); });
  connect(&made.bars(), &ActivityBars::spanDropped, this, [this] { filterBy({}); });
  connect(&made.bars(), &ActivityBars::sightChanged, this, [this] {
    if (!isCounted_ || !fitsBadly()) return;
    isCounted_ = false;
    countLater();
  });
  showTexts();
}

void ListActivity::setShown(bool shown) {
  if (area_.activity == nullptr) {
    if (!shown) return;
    makeStrip();
  }
  if (!shown && strip().isAncestorOf(QApplication::focusWidget())) area_.list.setFocus(Qt::OtherFocusReason);
  strip().setVisible(shown);
}

void ListActivity::showTexts() {
  if (area_.activity == nullptr) return;
  strip().setTexts([](std::string_view key) { return ownText(key); });
  if (showAgain_) showAgain_();
}

bool ListActivity::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) countLater();
  return QObject::eventFilter(watched, event);
}

void ListActivity::followRows() {
  // The span that was chosen in the strip changes no bar.
  if (isFiltering_) return;
  isCounted_ = false;
  if (list().wholeRowCount() == 0) asked_.reset();
  if (area_.activity == nullptr) return;
  // What is counted already is of rows that are gone.
  if (list().wholeRowCount() == 0) showMessage("activity.nothing");
  countLater();
}

void ListActivity::countLater() {
  if (isCounted_ || isWaiting_) return;
  isWaiting_ = true;
  // Rows and filters of one operation are counted once.
  QMetaObject::invokeMethod(
      this,
      [this] {
        isWaiting_ = false;
        if (!isCounted_ && strip().isVisible()) count();
      },
      Qt::QueuedConnection);
}

void ListActivity::count() {
  isCounted_ = true;
  work_.stop();
  if (list().wholeRowCount() == 0) return showMessage("activity.nothing");
  const auto time = query::auditColumnOf(list(), timeColumn);
  if (!time) return showMessage("activity.noColumn");
  kinds_ = kindColumns(list());
  QStringList captions;
  for (const ColumnIndex column : kinds_) captions << fromUtf8(list().columns()[column.value].caption);
  strip().setKinds(captions);
  if (strip().bars().activity().bars.empty()) showMessage("activity.counting");

  const auto failure = query::failureOf([&] {
    std::optional<results::RowFilter> others;
    const auto& conditions = list().filter().columns;
    const auto isSpan = [&](const ColumnCondition& each) { return isRangeOf(each, *time); };
    if (std::any_of(conditions.begin(), conditions.end(), isSpan)) {
      others = list().filter();
      std::erase_if(others->columns, isSpan);
    }
    const int kind = strip().kind();
    std::optional<ColumnIndex> kindColumn;
    if (kind >= 0 && static_cast<std::size_t>(kind) < kinds_.size())
      kindColumn = kinds_[static_cast<std::size_t>(kind)];
    const auto made =
        std::make_shared<Count>(Count{.rows = list(),
                                      .filter = std::move(others),
                                      .time = *time,
                                      .kind = kindColumn,
                                      .asked = asked_,
                                      .mostBars = asked_ ? query::mostActivityBars : strip().bars().room()});
    work_.start([made](const std::stop_token& /*stop*/) { made->run(); }, [this, made] { finish(*made); });
  });
  if (failure) showMessage("activity.failed", failureText(*failure));
}

void ListActivity::finish(const Count& count) {
  // The rows have changed meanwhile, and are counted next.
  if (!isCounted_) return;
  if (count.failure) return showMessage("activity.failed", failureText(*count.failure));
  if (count.activity.bars.empty())
    return showMessage(count.activity.undated > 0 ? "activity.noDate" : "activity.nothing");
  showAgain_ = nullptr;
  strip().showActivity(count.activity, count.asked);
  showMark();
}

void ListActivity::showMark() {
  std::optional<query::ActivitySpan> span;
  const auto time = query::auditColumnOf(list(), timeColumn);
  for (const ColumnCondition& condition : list().filter().columns)
    if (time && isRangeOf(condition, *time)) span = query::spanOf(*condition.range);
  strip().bars().setMarked(span);
}

void ListActivity::showMessage(const char* key, const QString& detail) {
  showAgain_ = [this, key, detail] { strip().showMessage(detail.isEmpty() ? ownText(key) : ownText(key).arg(detail)); };
  showAgain_();
}

void ListActivity::filterBy(const std::optional<query::ActivitySpan>& span) {
  const auto time = query::auditColumnOf(list(), timeColumn);
  if (!time) return;
  const bool before = std::exchange(isFiltering_, true);
  filter_(*time, span ? std::optional(query::textRange(*span)) : std::nullopt);
  isFiltering_ = before;
  showMark();
}

bool ListActivity::fitsBadly() const {
  const query::Activity& activity = strip().bars().activity();
  if (asked_ || activity.bars.empty()) return false;
  const std::size_t room = strip().bars().room();
  if (activity.bars.size() > room) return activity.step != ActivityStep::month;
  // How many bars the next shorter step would have at most.
  constexpr std::array<std::size_t, 4> parts = {std::numeric_limits<std::size_t>::max(), 24, 7, 6};
  const std::size_t part = parts.at(static_cast<std::size_t>(activity.step));
  return activity.bars.size() <= room / part;
}

}  // namespace korvel::control
