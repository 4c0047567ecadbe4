// A complete answer of a million records, from the first call to the written file, against one pass of bare SQLite over
// the same rows.

#include <benchmark/benchmark.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/least.h"
#include "cli/messages.h"
#include "cli/tool.h"
#include "db/open_connection.h"
#include "query/complete_query.h"

namespace korvel::bench {
namespace {

/// The tool's `query --complete --format csv`, and the number of calls that it needs.
void completeQuery(benchmark::State& state) {
  const AuditFolder& folder = millionRecords();
  const std::string directory = folder.file().parent_path().string();
  const std::string output = directory + "/complete.csv";
  query::FilterTree tree;
  tree.selectAll();
  const query::DateRange noRange;
  const std::string connectionString = folder.connectionString();

  Least bareTime;
  Least askTime;
  Least toolTime;
  std::size_t calls = 0;
  for (auto _ : state) {
    bareTime.measure(
        [&] { benchmark::DoNotOptimize(BareSqlite{folder.file()}.copyOut("SELECT * FROM Korvel_Audit_Trails")); });
    query::CompleteAnswer answer;
    askTime.measure([&] {
      answer = query::completeStandardQuery({tree, noRange, connectionString}, db::openConnection);
    });
    if (answer.rowCount() != manyRows || !answer.report().incomplete.empty())
      return state.SkipWithError("not the million records that were to be measured");
    calls = answer.report().calls;
    answer = {};
    int status = 0;
    std::ostringstream out;
    std::ostringstream err;
    state.SetIterationTime(toolTime.measure([&] {
      status = cli::runTool(
          {"query", "--server", directory, "--complete", "--quiet", "--format", "csv", "--output", output}, out, err);
    }));
    if (status != cli::exitDone) return state.SkipWithError(err.str().c_str());
  }
  state.counters["bare_ms"] = bareTime.seconds * 1000;
  state.counters["ask_to_bare"] = askTime.seconds / bareTime.seconds;
  state.counters["tool_to_bare"] = toolTime.seconds / bareTime.seconds;
  state.counters["calls"] = static_cast<double>(calls);
}
BENCHMARK(completeQuery)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// A connection that is asked in slices, as a server's is.
class InSlices final : public db::Connection {
 public:
  explicit InSlices(std::unique_ptr<db::Connection> connection) : connection_(std::move(connection)) {}
  void execute(std::string_view commandText, db::ResultSink& sink) override { connection_->execute(commandText, sink); }
  void select(const db::AuditSelection& selection, db::ResultSink& sink) override {
    connection_->select(selection, sink);
  }

 private:
  std::unique_ptr<db::Connection> connection_;
};

/// What the index on DateTime saves where an answer is completed in slices: the time from the first call to the joined
/// rows.
void completeInSlices(benchmark::State& state, const AuditFolder& folder, const query::FilterTree& tree) {
  const std::string connectionString = folder.connectionString();
  query::CompleteAnswer answer;
  Least time;
  for (auto _ : state)
    state.SetIterationTime(time.measure([&] {
      answer = query::completeStandardQuery({tree, {}, connectionString},
                                            [](std::string_view text, const std::stop_token& stop) {
                                              return std::make_unique<InSlices>(db::openConnection(text, stop));
                                            });
    }));
  if (!answer.report().incomplete.empty() || answer.rowCount() == 0) return state.SkipWithError("not complete");
  state.counters["calls"] = static_cast<double>(answer.report().calls);
  state.counters["records"] = static_cast<double>(answer.rowCount());
}

const AuditFolder& withoutTheIndex() {
  static const AuditFolder folder{manyRows};
  static const bool isDropped = (runOn(folder.file(), "DROP INDEX Korvel_Audit_Trails_DateTime"), true);
  benchmark::DoNotOptimize(isDropped);
  return folder;
}

query::FilterTree everything() {
  query::FilterTree tree;
  tree.selectAll();
  return tree;
}
void inSlices(benchmark::State& state) {
  completeInSlices(state, millionRecords(), everything());
}
void inSlicesWithoutTheIndex(benchmark::State& state) {
  completeInSlices(state, withoutTheIndex(), everything());
}
/// A table with the index that serves slices of one category too.
const AuditFolder& withBothIndexes() {
  static const AuditFolder folder{manyRows};
  static const bool isIndexed = (runOn(folder.file(),
                                       "CREATE INDEX TypeAndDate ON Korvel_Audit_Trails (rtrim(AuditType) COLLATE "
                                       "NOCASE, DateTime)"),
                                 true);
  benchmark::DoNotOptimize(isIndexed);
  return folder;
}

/// The answers to ten slices of about 4,500 rows, one by one, through an index: "NOT INDEXED" or "INDEXED BY ...". The
/// milliseconds are those of a slice.
void slicesThrough(benchmark::State& state, const std::string& index, const std::string& category, int days) {
  BareSqlite database{withBothIndexes().file()};
  constexpr int slices = 10;
  Least time;
  std::size_t rows = 0;
  for (auto _ : state) {
    rows = 0;
    const double seconds = time.measure([&] {
      for (int month = 1; month <= slices; ++month) {
        const std::string first = "2004-" + std::string(month < 10 ? "0" : "") + std::to_string(month) + "-";
        rows += database.stepThrough("SELECT * FROM Korvel_Audit_Trails " + index + " WHERE " + category +
                                     "DateTime >= '" + first + "10' AND DateTime < '" + first +
                                     std::to_string(10 + days) + "' ORDER BY Nr LIMIT 5000");
      }
    });
    state.SetIterationTime(seconds / slices);
  }
  state.counters["rows"] = static_cast<double>(rows) / slices;
}

constexpr const char* noIndex = "NOT INDEXED";
constexpr const char* byDate = "INDEXED BY Korvel_Audit_Trails_DateTime";
constexpr const char* byTypeAndDate = "INDEXED BY TypeAndDate";
constexpr const char* oneCategory = "rtrim(AuditType) COLLATE NOCASE = 'OA' AND ";
BENCHMARK_CAPTURE(slicesThrough, all_without_an_index, noIndex, "", 3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(slicesThrough, all_by_date, byDate, "", 3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(slicesThrough, one_category_without_an_index, noIndex, oneCategory, 9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(slicesThrough, one_category_by_date, byDate, oneCategory, 9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(slicesThrough, one_category_by_type_and_date, byTypeAndDate, oneCategory, 9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(inSlices)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(inSlicesWithoutTheIndex)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace korvel::bench
