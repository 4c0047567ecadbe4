#include "control/list_exceptions.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "control/answer_status.h"
#include "control/find_and_filter.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/texts.h"
#include "query/query_failure.h"
#include "results/row_filter.h"

namespace korvel::control {
namespace {

using evidence::exceptionRuleCount;
using evidence::exceptionRules;
using results::ResultList;
using results::RowId;

std::string nameOf(std::size_t rule) {
  return std::string(exceptionRules().at(rule).textKey);
}

bool isOfRule(const results::RecordCondition& condition) {
  return std::any_of(exceptionRules().begin(), exceptionRules().end(),
                     [&](const evidence::ExceptionRuleInfo& info) { return info.textKey == condition.name; });
}

}  // namespace

/// What a worker judges, and what came of it.
struct ListExceptions::Count {
  ResultList rows;
  results::RowFilter others;  ///< the list's filter without those by rules
  evidence::ExceptionSettings settings;
  std::optional<evidence::FoundExceptions> found{};
  std::array<std::size_t, exceptionRuleCount> counts{};
  std::optional<Error> failure{};

  void run() {
    failure = query::failureOf([this] {
      // They go as soon as they are judged.
      ResultList judged = std::exchange(rows, ResultList(results::RowFilling::whole));
      judged.setFilter({});
      found = evidence::findExceptions(judged, settings);
      if (!found) return;
      const auto passing = results::passingRecords(judged, others);
      for (std::size_t rule = 0; rule < counts.size(); ++rule)
        counts.at(rule) =
            static_cast<std::size_t>(std::count_if(found->records.at(rule).begin(), found->records.at(rule).end(),
                                                   [&](RowId record) { return passing[record.value] != 0; }));
    });
  }
};

ListExceptions::ListExceptions(ExceptionView& view, const MessageBoxes& messages, const AnswerStatus& answers,
                               FindAndFilter& findAndFilter)
    : view_(view), messages_(messages), answers_(answers), findAndFilter_(findAndFilter), work_(nullptr) {
  connect(&view_, &ExceptionView::ruleChosen, this, [this](int rule) {
    messages_.trapped("FilterByException", [&] { toggle(static_cast<std::size_t>(rule)); });
  });
}

void ListExceptions::follow(ResultListView& list, std::size_t page) {
  disconnect(listChange_);
  list_ = &list;
  page_ = page;
  listChange_ = connect(&list.listModel(), &QAbstractItemModel::modelReset, this, [this] { followRows(); });
  followRows();
}

void ListExceptions::leave() {
  disconnect(listChange_);
  list_ = nullptr;
  work_.stop();
  found_.reset();
}

void ListExceptions::followRows() {
  // The records of a rule, shown or not, change no count.
  if (isFiltering_ || list_.isNull()) return;
  work_.stop();
  showMessage("exceptions.counting");
  countLater();
}

void ListExceptions::countLater() {
  if (std::exchange(isWaiting_, true)) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        isWaiting_ = false;
        if (!list_.isNull()) count();
      },
      Qt::QueuedConnection);
}

void ListExceptions::count() {
  const ResultList& list = list_->listModel().list();
  if (list.wholeRowCount() == 0) return showMessage("exceptions.nothing");
  const auto failure = query::failureOf([&] {
    results::RowFilter others = list.filter();
    std::erase_if(others.records, isOfRule);
    hasOtherFilters_ = !others.isEmpty();
    const auto made = std::make_shared<Count>(
        Count{.rows = list, .others = std::move(others), .settings = {libraryState().workingHours, hasAllNumbers()}});
    work_.start([made](const std::stop_token& /*stop*/) { made->run(); }, [this, made] { finish(*made); });
  });
  if (failure) showMessage("exceptions.failed", failureText(*failure));
}

void ListExceptions::finish(const Count& count) {
  if (count.failure) return showMessage("exceptions.failed", failureText(*count.failure));
  if (!count.found) return showMessage("exceptions.noColumns");
  found_ = count.found;
  counts_ = count.counts;
  show();
}

bool ListExceptions::hasAllNumbers() const {
  const evidence::Manifest* const record = answers_.record(page_);
  return page_ == 0 && record != nullptr && record->isComplete.value_or(false) && record->question.from.empty() &&
         record->question.categories.size() == query::CategoryFlags().size();
}

bool ListExceptions::isShown(std::size_t rule) const {
  return !list_.isNull() && findAndFilter_.keepsRecords(*list_, nameOf(rule));
}

void ListExceptions::showMessage(const char* key, const QString& detail) {
  found_.reset();
  message_ = key;
  detail_ = detail;
  show();
}

void ListExceptions::show() {
  std::vector<ExceptionView::Line> lines(exceptionRuleCount);
  if (!found_) {
    for (ExceptionView::Line& line : lines) line.count = QStringLiteral("\u2013");
    view_.showLines(lines);
    if (message_ != nullptr) view_.showState(detail_.isEmpty() ? ownText(message_) : ownText(message_).arg(detail_));
    return;
  }
  constexpr auto missing = static_cast<std::size_t>(evidence::ExceptionRule::numbersMissing);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool isJudged = i != missing || found_->numbersWereJudged;
    const bool isChosen = isShown(i);
    lines[i] = {.count = isJudged ? countText(counts_.at(i)) : ownText("exceptions.notJudged"),
                .canBeChosen = counts_.at(i) > 0 || isChosen,
                .isChosen = isChosen};
  }
  view_.showLines(lines);
  QString state = ownText("exceptions.lookedAt").arg(countText(found_->lookedAt));
  if (hasOtherFilters_) state += QStringLiteral(". ") + ownText("exceptions.otherFilters");
  view_.showState(state, found_->numbersWereJudged ? QString() : ownText("exceptions.numbersNote"));
}

void ListExceptions::showTexts() {
  view_.setTexts();
  if (!list_.isNull()) show();
}

void ListExceptions::toggle(std::size_t chosen) {
  if (list_.isNull() || !found_) return;
  const bool wasShown = isShown(chosen);
  const bool before = std::exchange(isFiltering_, true);
  const auto failure = query::failureOf([&] {
    // Each count is of one rule: the records of another one leave.
    for (std::size_t i = 0; i < exceptionRuleCount; ++i)
      if (i != chosen || wasShown) findAndFilter_.showAllRecords(*list_, nameOf(i));
    if (!wasShown)
      findAndFilter_.keepOnlyRecords(
          *list_, nameOf(chosen),
          results::matchingOnly(list_->listModel().list(), found_->records.at(chosen))->records);
  });
  isFiltering_ = before;
  show();
  if (failure) throw Error(*failure);
}

}  // namespace korvel::control
