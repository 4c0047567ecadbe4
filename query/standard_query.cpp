#include "query/standard_query.h"

#include <utility>
#include <vector>

#include "base/text.h"
#include "query/query_failure.h"
#include "results/store_filler.h"

namespace korvel::query {

namespace {

constexpr std::string_view routingColumn = "AuditType";

constexpr std::string_view truthText(bool value) noexcept {
  return value ? "True" : "False";
}

}  // namespace

std::string queryAuditsText(const CategoryFlags& flags, const DateTexts& dates) {
  std::string text = "QueryAudits '";
  for (std::size_t i = 0; i < flags.size(); ++i) {
    text += truthText(flags[i]);
    text += "','";
  }
  text += truthText(dates.active);
  text += "','";
  text += dates.from;
  text += "','";
  text += dates.to;
  text += '\'';
  return text;
}

std::string queryAuditsText(const CategoryFlags& flags, const DateRange& range) {
  return queryAuditsText(flags, textsOf(range));
}

bool alarmsComeFromAllDates(const CategoryFlags& flags, const DateRange& range) noexcept {
  return range.DateRangeActive && flags[alarmsCategory] && !flags.all();
}

ResultLists makeResultLists() {
  using results::ResultList;
  using results::RowFilling;
  ResultLists lists{ResultList(RowFilling::standard), ResultList(RowFilling::standard),
                    ResultList(RowFilling::standard), ResultList(RowFilling::standard),
                    ResultList(RowFilling::standard), ResultList(RowFilling::whole)};
  for (std::size_t i = 0; i < standardListCount; ++i) setUpAuditColumns(lists[i]);
  return lists;
}

/// Stores each row once and notes, while the row passes by, which of the lists 0..4 it goes to.
class StandardQueryResult::Sink final : public db::ResultSink {
 public:
  Sink(const results::MemoryGauge& memory, std::stop_token stop) : filler_(memory), stop_(std::move(stop)) {}

  void beginResult(std::span<const db::Field> fields) override {
    noteEmptyFirst();
    if (firstResultEmpty_) return;
    ++resultCount_;
    rowsOfResult_ = 0;
    auditType_.reset();
    for (std::size_t i = 0; i < fields.size() && !auditType_; ++i)
      if (equalsIgnoringAsciiCase(fields[i].name, routingColumn)) auditType_ = i;
    filler_.beginResult(fields);
  }

  bool row(std::span<const db::Cell> cells) override {
    if (firstResultEmpty_) return false;
    const results::RowId id = filler_.append(cells);
    rows_[0].push_back(id);
    if (auditType_ && *auditType_ < cells.size())
      if (const auto list = listOfStoredAuditType(cells[*auditType_].text)) rows_[*list].push_back(id);
    if (++rowsOfResult_ == db::rowLimitPerResult) fullResults_.push_back(resultCount_ - 1);
    return true;
  }

  void endResult() override { noteEmptyFirst(); }

  /// After an empty first result nothing that follows is waited for.
  bool shouldContinue() override { return !firstResultEmpty_ && !stop_.stop_requested(); }

  [[nodiscard]] bool firstResultEmpty() const noexcept { return firstResultEmpty_; }
  [[nodiscard]] bool hasRows() const noexcept { return !rows_[0].empty(); }
  [[nodiscard]] const std::vector<std::size_t>& fullResults() const noexcept { return fullResults_; }
  [[nodiscard]] std::size_t resultCount() const noexcept { return resultCount_; }

  /// Nothing more comes: waits until every row is stored. Throws Error where one could not be.
  void finish() { filler_.finish(); }

  void fill(ResultLists& lists) {
    const std::shared_ptr<const results::RowStore> store = filler_.takeStore();
    for (std::size_t i = 0; i < rows_.size(); ++i) lists[i].setRows(store, std::move(rows_[i]));
  }

 private:
  void noteEmptyFirst() noexcept {
    if (resultCount_ == 1 && rowsOfResult_ == 0) firstResultEmpty_ = true;
  }

  results::StoreFiller filler_;
  std::stop_token stop_;
  std::array<std::vector<results::RowId>, standardListCount> rows_;
  std::optional<std::size_t> auditType_;
  std::size_t resultCount_ = 0;
  std::size_t rowsOfResult_ = 0;
  std::vector<std::size_t> fullResults_;
  bool firstResultEmpty_ = false;
};

StandardQueryResult::StandardQueryResult() = default;
StandardQueryResult::StandardQueryResult(QueryReport report) : report_(std::move(report)) {}
StandardQueryResult::StandardQueryResult(StandardQueryResult&&) noexcept = default;
StandardQueryResult& StandardQueryResult::operator=(StandardQueryResult&&) noexcept = default;
StandardQueryResult::~StandardQueryResult() = default;

StandardQueryResult StandardQueryResult::stopped() {
  return StandardQueryResult({QueryOutcome::stopped, std::nullopt});
}

QueryReport StandardQueryResult::fill(ResultLists& lists, std::size_t currentList) {
  if (!sink_) return report_;
  const auto unfilled = failureOf([&] {
    sink_->fill(lists);
    // A list whose sorting is on has sorted its new rows already.
    if (currentList < lists.size() && !lists[currentList].isSorted()) lists[currentList].sort();
  });
  sink_.reset();
  if (!unfilled) return report_;
  clearStandardLists(lists);
  return {QueryOutcome::failed, unfilled};
}

void clearStandardLists(ResultLists& lists) noexcept {
  for (std::size_t i = 0; i < standardListCount; ++i) lists[i].clear();
}

StandardQueryResult executeStandardQuery(const StandardQueryRequest& question, const Connector& connect,
                                         const db::WaitCallback& onWait, const QueryEnvironment& environment) {
  if (!question.tree.anyRootChecked()) return StandardQueryResult({QueryOutcome::noCriteria, std::nullopt});

  bool stopped = false;
  std::optional<StandardQueryResult> answer;
  const auto broken = failureOf([&] {
    // Everything is the work's own: it may be left behind.
    const auto work = [call = queryAuditsText(question.tree.flags(), question.range),
                       connectionString = question.connectionString, connect,
                       memory = environment.memory](const std::stop_token& stop) {
      StandardQueryResult whole;
      // The connection belongs to this step: it is closed before a list is filled, also after an incomplete answer.
      const auto failure = failureOf([&] {
        whole.sink_ = std::make_unique<StandardQueryResult::Sink>(memory, stop);
        const auto connection = connect(connectionString, stop);
        if (!connection) throw internalFailure();
        connection->execute(call, *whole.sink_);
        whole.sink_->finish();
      });
      const bool noRecords = whole.sink_ && (whole.sink_->firstResultEmpty() || (!failure && !whole.sink_->hasRows()));
      if (noRecords) return StandardQueryResult({QueryOutcome::noRecords, std::nullopt});
      if (failure) return StandardQueryResult({QueryOutcome::failed, failure});
      whole.report_ = {QueryOutcome::filled, std::nullopt, whole.sink_->fullResults(), whole.sink_->resultCount()};
      return whole;
    };
    db::WaitCallback noted;
    if (onWait)
      noted = [&] {
        stopped = !onWait();
        return !stopped;
      };
    answer = db::runOnWorker(work, noted, environment.pace);
  });
  if (broken) return StandardQueryResult({QueryOutcome::failed, broken});
  if (stopped || !answer) return StandardQueryResult::stopped();
  return std::move(*answer);
}

QueryReport runStandardQuery(const StandardQueryRequest& question, const Connector& connect, ResultLists& lists,
                             std::size_t currentList, const db::WaitCallback& onWait,
                             const QueryEnvironment& environment) {
  clearStandardLists(lists);
  return executeStandardQuery(question, connect, onWait, environment).fill(lists, currentList);
}

}  // namespace korvel::query
