// The digests of a million records against SHA-256 alone over the same bytes, and the exceptions among them.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/audit_file.h"
#include "bench/least.h"
#include "bench/stored_answer.h"
#include "db/open_connection.h"
#include "evidence/exceptions.h"
#include "evidence/recorded_rows.h"
#include "query/audit_record.h"

namespace korvel::bench {
namespace {

results::ResultList wholeTrail() {
  results::ResultList list(results::RowFilling::standard);
  query::setUpAuditColumns(list);
  const auto store =
      storedAnswer(*db::openConnection(millionRecords().connectionString()), "Select * from Korvel_Audit_Trails");
  std::vector<results::RowId> ids;
  for (std::uint32_t row = 0; row < store->rowCount(); ++row) ids.push_back({row});
  list.setRows(store, std::move(ids));
  return list;
}

/// The canonical forms of all rows, one behind the other.
struct CanonicalForms {
  explicit CanonicalForms(const results::ResultList& list) {
    const results::RowStore& store = *list.store();
    evidence::RowDigester digester(store.fieldsOf({0}));
    std::vector<db::Cell> cells(store.columnCount());
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
      for (std::size_t column = 0; column < cells.size(); ++column)
        cells[column] = store.cell(list.rowId({row}), {column});
      text += digester.canonicalForm(cells);
      ends.push_back(text.size());
    }
  }
  std::string text;
  std::vector<std::size_t> ends;
};

/// Each of the three in turn, so that they meet the same machine.
void rowDigests(benchmark::State& state) {
  const results::ResultList list = wholeTrail();
  const CanonicalForms forms(list);
  Least recorded;
  Least eachRow;
  Least together;
  for (auto _ : state) {
    state.SetIterationTime(recorded.measure([&] { benchmark::DoNotOptimize(evidence::recordedRows(list)); }));
    eachRow.measure([&] {
      evidence::Sha256 sum;
      std::size_t begin = 0;
      for (const std::size_t end : forms.ends) {
        sum.update(std::string_view(forms.text).substr(begin, end - begin));
        benchmark::DoNotOptimize(sum.finish());
        begin = end;
      }
    });
    together.measure([&] { benchmark::DoNotOptimize(evidence::Sha256::of(forms.text)); });
  }
  state.counters["MB"] = static_cast<double>(forms.text.size()) / 1e6;
  state.counters["ms_sha256_each"] = eachRow.seconds * 1e3;
  state.counters["ms_sha256_together"] = together.seconds * 1e3;
  state.counters["times_each"] = recorded.seconds / eachRow.seconds;
  state.counters["times_together"] = recorded.seconds / together.seconds;
}
BENCHMARK(rowDigests)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// All rules at once.
void exceptions(benchmark::State& state) {
  const results::ResultList list = wholeTrail();
  Least found;
  for (auto _ : state)
    state.SetIterationTime(found.measure([&] {
      benchmark::DoNotOptimize(evidence::findExceptions(list, {{}, true}));
    }));
  state.counters["ms_least"] = found.seconds * 1e3;
}
BENCHMARK(exceptions)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace korvel::bench
