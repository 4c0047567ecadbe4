#include "query/custom_query.h"

#include <cstdint>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "query/paced_look.h"
#include "query/query_failure.h"
#include "results/store_filler.h"

namespace korvel::query {

namespace {

/// Keeps the first result set.
class FirstResultSink final : public db::ResultSink {
 public:
  FirstResultSink(const QueryProgress& progress, const QuerySurroundings& surroundings)
      : filler_(surroundings.memory), pace_(progress, surroundings) {}

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
    return rowCount_ % rowsBetweenLooks != 0 || pace_.look(rowCount_, filler_.memory());
  }

  void endResult() override {
    if (begun_) complete_ = true;
  }

  /// Engines that have sent the first result set send no other.
  bool goOn() override { return !complete_ && pace_.look(rowCount_, filler_.memory()); }

  [[nodiscard]] bool stopped() const noexcept { return pace_.stopped(); }
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

  results::StoreFiller filler_;
  PacedLook pace_;
  std::vector<db::Field> fields_;
  std::size_t rowCount_ = 0;
  bool begun_ = false;
  bool complete_ = false;
};

}  // namespace

CustomReport runCustomQuery(const std::string& text, const std::string& connectionString, const Connector& connect,
                            results::ResultList& list, const QueryProgress& progress,
                            const QuerySurroundings& surroundings) {
  list.clear();
  std::optional<FirstResultSink> sink;
  // The connection lives inside this step: it is closed before the list is filled, also when the answer breaks off.
  const auto broken = failureOf([&] {
    sink.emplace(progress, surroundings);
    if (!sink->goOn()) return;
    const auto connection = connect(connectionString);
    if (!connection) throw internalFailure();
    if (sink->goOn()) connection->execute(text, *sink);
  });
  if (sink && sink->stopped()) return {CustomOutcome::stopped, std::nullopt};
  if (broken) return {CustomOutcome::failed, broken};
  if (sink->rowCount() == 0) return {CustomOutcome::noRecords, std::nullopt};

  const auto unfilled = failureOf([&] {
    sink->finish();
    sink->fill(list);
  });
  if (!unfilled) return {CustomOutcome::filled, std::nullopt};
  list.clear();
  return {CustomOutcome::failed, unfilled};
}

}  // namespace korvel::query
