#include "query/custom_query.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "query/query_environment.h"
#include "query/query_failure.h"
#include "results/store_filler.h"

namespace korvel::query {

namespace {

/// Keeps the first result set.
class FirstResultSink final : public db::ResultSink {
 public:
  /// The rows so far are written to `rowsSoFar`, which others read.
  FirstResultSink(const QueryEnvironment& environment, std::stop_token stop, std::atomic<std::size_t>& rowsSoFar)
      : filler_(environment.memory), look_(environment), stop_(std::move(stop)), rowsSoFar_(rowsSoFar) {}

  void beginResult(std::span<const db::Field> fields) override {
    if (begun_) {
      complete_ = true;  // an engine that did not say that the first one had ended
      return;
    }
    begun_ = true;
    fields_.assign(fields.begin(), fields.end());
    filler_.beginResult(fields);
  }

  bool row(std::span<const db::Cell> cells) override {
    if (complete_) return false;
    filler_.append(cells);
    ++rowCount_;
    return rowCount_ % rowsBetweenLooks != 0 || mayGoOn();
  }

  void endResult() override {
    if (begun_) complete_ = true;
  }

  /// Engines that have sent the first result set send no other.
  bool shouldContinue() override { return !complete_ && mayGoOn(); }

  [[nodiscard]] std::size_t rowCount() const noexcept { return rowCount_; }

  /// Nothing more comes: waits until every row is stored. Throws Error where one could not be.
  void finish() { filler_.finish(); }

  void fill(results::ResultList& list) {
    std::vector<results::ColumnHeader> columns;
    columns.reserve(fields_.size());
    for (const db::Field& field : fields_) columns.push_back({field.name, results::standardColumnWidth, 0});
    std::vector<results::RowId> rows;
    rows.reserve(rowCount_);
    for (std::size_t row = 0; row < rowCount_; ++row) rows.push_back({static_cast<std::uint32_t>(row)});
    auto store = filler_.takeStore();
    list.startOver(std::move(columns));
    list.setRows(std::move(store), std::move(rows));
  }

 private:
  /// A look at the clock costs as much as a cell. Engines ask oftener where rows come slowly.
  static constexpr std::size_t rowsBetweenLooks = 64;

  bool mayGoOn() {
    rowsSoFar_.store(rowCount_, std::memory_order_relaxed);
    if (stop_.stop_requested()) return false;
    look_.look(filler_.memory());
    return true;
  }

  results::StoreFiller filler_;
  PacedMemoryCheck look_;
  std::stop_token stop_;
  std::atomic<std::size_t>& rowsSoFar_;
  std::vector<db::Field> fields_;
  std::size_t rowCount_ = 0;
  bool begun_ = false;
  bool complete_ = false;
};

/// What the thread of the query hands over once.
struct CustomAnswer {
  std::unique_ptr<FirstResultSink> sink;
  std::optional<Error> failure;
};

}  // namespace

CustomReport runCustomQuery(const std::string& text, const std::string& connectionString, const Connector& connect,
                            results::ResultList& list, const QueryProgress& progress,
                            const QueryEnvironment& environment) {
  list.clear();
  // Shared with the query's thread, which may be left behind.
  const auto rowsSoFar = std::make_shared<std::atomic<std::size_t>>(0);
  bool stopped = false;
  const db::WaitCallback onWait = [&] {
    stopped = progress && !progress(rowsSoFar->load(std::memory_order_relaxed));
    return !stopped;
  };
  std::optional<CustomAnswer> answer;
  auto broken = failureOf([&] {
    if (!onWait()) return;
    const auto work = [text, connectionString, connect, environment, rowsSoFar](const std::stop_token& stop) {
      CustomAnswer whole;
      // The connection belongs to this step: it is closed before the list is filled, also after an incomplete answer.
      whole.failure = failureOf([&] {
        whole.sink = std::make_unique<FirstResultSink>(environment, stop, *rowsSoFar);
        const auto connection = connect(connectionString, stop);
        if (!connection) throw internalFailure();
        if (whole.sink->shouldContinue()) connection->executeRolledBack(text, *whole.sink);
        whole.sink->finish();
      });
      return whole;
    };
    answer = db::runOnWorker(work, progress ? onWait : db::WaitCallback{}, environment.pace);
  });
  if (stopped) return {CustomOutcome::stopped, std::nullopt};
  if (!broken && answer) broken = std::move(answer->failure);
  if (broken) return {CustomOutcome::failed, broken};
  if (!answer) return {CustomOutcome::stopped, std::nullopt};
  if (answer->sink->rowCount() == 0) return {CustomOutcome::noRecords, std::nullopt};

  const auto unfilled = failureOf([&] { answer->sink->fill(list); });
  if (!unfilled) return {CustomOutcome::filled, std::nullopt};
  list.clear();
  return {CustomOutcome::failed, unfilled};
}

}  // namespace korvel::query
