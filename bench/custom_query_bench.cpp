// A custom query for a whole trail, from its text to the filled list, against stepping through the same statement.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/least.h"
#include "db/open_connection.h"
#include "query/custom_query.h"

namespace korvel::bench {
namespace {

void customQuery(benchmark::State& state) {
  const AuditFolder& folder = millionRecords();
  const std::string text = "Select * from Korvel_Audit_Trails";
  const std::string connectionString = folder.connectionString();
  // As in the control: progress is reported.
  std::size_t told = 0;
  const auto progress = [&told](std::size_t) { return ++told > 0; };

  Least bareTime;
  Least queryTime;
  for (auto _ : state) {
    std::size_t bareRows = 0;
    bareTime.measure([&] { bareRows = BareSqlite{folder.file()}.stepThrough(text); });
    results::ResultList list{results::RowFilling::whole};
    query::CustomReport report;
    state.SetIterationTime(queryTime.measure(
        [&] { report = query::runCustomQuery(text, connectionString, db::openConnection, list, progress); }));
    if (report.outcome != query::CustomOutcome::filled || list.rowCount() != bareRows || bareRows != manyRows)
      return state.SkipWithError("not the million rows that were to be measured");
  }
  state.counters["bare_ms"] = bareTime.seconds * 1000;
  state.counters["query_ms"] = queryTime.seconds * 1000;
  state.counters["query_to_bare"] = queryTime.seconds / bareTime.seconds;
}
BENCHMARK(customQuery)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(12);

}  // namespace
}  // namespace korvel::bench
