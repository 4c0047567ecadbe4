// The standard query from the button to sorted lists against stepping through the same statements.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/least.h"
#include "db/embedded/audit_statements.h"
#include "db/open_connection.h"
#include "db/procedure/query_audits_call.h"
#include "query/standard_query.h"

namespace korvel::bench {
namespace {

constexpr std::size_t wantedRows = 45000;

/// All categories but one: nine result sets, each cut off at its limit.
query::FilterTree nineCategories() {
  query::FilterTree tree;
  tree.selectAll();
  const auto& nodes = query::filterNodes();
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].key == "R1") tree.setChecked({i + 1}, false);
  return tree;
}

/// The rows of the rarest kinds, four times: a demo plant has too few of them for full result sets.
const AuditFolder& recordsWithFullCategories() {
  static const AuditFolder folder{manyRows};
  static const bool repeated = [] {
    std::string others;
    for (const query::AuditColumn& column : query::auditColumns())
      if (column.name != "Nr") others += ", " + std::string{column.name};
    for (const char* kind : {"ROLLBACK", "RESTORE"})
      for (int doubling = 0; doubling < 2; ++doubling)
        runOn(folder.file(), "INSERT INTO Korvel_Audit_Trails (Nr" + others +
                                 ") SELECT (SELECT max(Nr) FROM Korvel_Audit_Trails) + " + "row_number() OVER ()" +
                                 others + " FROM Korvel_Audit_Trails WHERE EventType = '" + kind + "'");
    return true;
  }();
  benchmark::DoNotOptimize(repeated);
  return folder;
}

void standardQuery(benchmark::State& state) {
  const AuditFolder& folder = recordsWithFullCategories();
  const query::FilterTree tree = nineCategories();
  const query::DateRange noRange;
  const auto call = db::parseQueryAuditsCall(query::queryAuditsText(tree.flags(), noRange));
  if (!call) return state.SkipWithError("the call text is no call");
  const std::vector<std::string> statements = db::auditStatements(*call, db::rowNumberOrder);
  const std::string connectionString = folder.connectionString();

  Least bareTime;
  Least queryTime;
  for (auto _ : state) {
    // Both sides open the file themselves, as each query does.
    std::size_t bareRows = 0;
    bareTime.measure([&] {
      BareSqlite bare{folder.file()};
      for (const std::string& statement : statements) bareRows += bare.stepThrough(statement);
    });
    query::ResultLists lists = query::makeResultLists();
    query::QueryReport report;
    state.SetIterationTime(queryTime.measure([&] {
      report = query::runStandardQuery({tree, noRange, connectionString}, db::openConnection, lists, 0);
    }));
    if (report.outcome != query::QueryOutcome::filled || lists[0].rowCount() != bareRows || bareRows != wantedRows)
      return state.SkipWithError("not the 45,000 rows that were to be measured");
  }
  state.counters["bare_ms"] = bareTime.seconds * 1000;
  state.counters["query_ms"] = queryTime.seconds * 1000;
  state.counters["query_to_bare"] = queryTime.seconds / bareTime.seconds;
}
BENCHMARK(standardQuery)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);

}  // namespace
}  // namespace korvel::bench
