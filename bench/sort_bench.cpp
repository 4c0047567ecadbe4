// Sorting a list of a million records by each of its columns, and visiting a column's texts to measure its width.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/audit_file.h"
#include "bench/stored_answer.h"
#include "db/open_connection.h"
#include "query/audit_record.h"
#include "results/result_list.h"

namespace korvel::bench {
namespace {

using results::ColumnIndex;
using results::ResultList;
using results::RowFilling;
using results::RowId;
using results::SortOrder;

std::shared_ptr<const results::RowStore> storeOf(const std::string& statement) {
  return storedAnswer(*db::openConnection(millionRecords().connectionString()), statement);
}

enum Arrival : std::int64_t { byEntryNumber = 0, shuffled = 1 };

/// The records in the order of their numbers, and shuffled.
const std::shared_ptr<const results::RowStore>& records(std::int64_t arrival) {
  static const auto inOrder = storeOf("Select * from Korvel_Audit_Trails");
  static const auto inNone = storeOf("Select * from Korvel_Audit_Trails order by Nr * 7919 % 1000003");
  return arrival == shuffled ? inNone : inOrder;
}

void sortByColumn(benchmark::State& state) {
  const ColumnIndex column{static_cast<std::size_t>(state.range(0))};
  const auto store = records(state.range(1));
  std::vector<RowId> rows(store->rowCount());
  for (std::uint32_t row = 0; row < rows.size(); ++row) rows[row] = {row};
  for (auto _ : state) {
    state.PauseTiming();
    ResultList list{RowFilling::whole};
    list.setRows(store, rows);
    state.ResumeTiming();
    list.sortBy(column, SortOrder::descending);
    benchmark::DoNotOptimize(list.rowId({0}));
  }
  std::size_t texts = 0;
  store->visitDistinct(column, [&](std::string_view) { ++texts; });
  state.SetLabel(std::string{query::auditColumns()[column.value].name} +
                 (state.range(1) == shuffled ? ", shuffled" : ""));
  state.counters["texts"] = static_cast<double>(texts);
}

void visitColumn(benchmark::State& state) {
  const ColumnIndex column{static_cast<std::size_t>(state.range(0))};
  const auto store = records(byEntryNumber);
  std::size_t longest = 0;
  for (auto _ : state)
    store->visitDistinct(column, [&](std::string_view text) { longest = std::max(longest, text.size()); });
  state.SetLabel(std::string{query::auditColumns()[column.value].name});
  state.counters["longest"] = static_cast<double>(longest);
}

void everyColumn(benchmark::internal::Benchmark* bench) {
  for (std::int64_t column = 0; column < static_cast<std::int64_t>(query::auditColumnCount); ++column)
    for (const Arrival arrival : {byEntryNumber, shuffled}) bench->Args({column, arrival});
}

BENCHMARK(sortByColumn)->Apply(everyColumn)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(visitColumn)->Arg(0)->Arg(1)->Arg(5)->Arg(9)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
