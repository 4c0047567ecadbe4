// A complete answer of a million records, from the first call to the written file, against one pass of bare SQLite over
// the same rows.

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

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

}  // namespace
}  // namespace korvel::bench
