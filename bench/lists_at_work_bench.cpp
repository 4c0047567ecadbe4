// Finding, filtering, grouping and counting in a list of a million and of five million records, and ripgrep over the
// same rows as CSV.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/audit_file.h"
#include "bench/least.h"
#include "bench/offscreen.h"
#include "bench/stored_answer.h"
#include "control/activity_bars.h"
#include "db/open_connection.h"
#include "output/list_writers.h"
#include "query/activity.h"
#include "query/audit_record.h"
#include "query/item_history.h"
#include "results/column_values.h"
#include "results/found_cells.h"
#include "results/group_list.h"
#include "results/row_filter.h"
#include "results/row_groups.h"

namespace korvel::bench {
namespace {

using results::ColumnIndex;
using results::DatePart;
using results::GroupKey;
using results::ResultList;
using results::RowFilling;
using results::TextMatcher;

constexpr std::uint64_t fewMillions = 5;

/// All rows of a database, as a list that shows all 18 columns.
std::unique_ptr<ResultList> listOf(const AuditFolder& folder) {
  auto list = std::make_unique<ResultList>(RowFilling::whole);
  query::setUpAuditColumns(*list);
  const auto store = storedAnswer(*db::openConnection(folder.connectionString()), "Select * from Korvel_Audit_Trails");
  std::vector<results::RowId> rows(store->rowCount());
  for (std::uint32_t row = 0; row < rows.size(); ++row) rows[row] = {row};
  list->setRows(store, std::move(rows));
  return list;
}

ResultList& listOfMillions(std::int64_t millions) {
  if (millions == 1) {
    static const std::unique_ptr<ResultList> one = listOf(millionRecords());
    return *one;
  }
  static const std::unique_ptr<ResultList> several = listOf(AuditFolder(manyRows * fewMillions));
  return *several;
}

ColumnIndex columnOf(std::string_view caption) {
  const auto& columns = query::auditColumns();
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].caption == caption) return {i};
  std::abort();
}

std::vector<ColumnIndex> allColumns() {
  std::vector<ColumnIndex> columns;
  for (std::size_t i = 0; i < query::auditColumnCount; ++i) columns.push_back({i});
  return columns;
}

/// The rows as CSV, for ripgrep.
const std::filesystem::path& csvFile() {
  static const std::filesystem::path file = [] {
    const std::filesystem::path path = millionRecords().file().parent_path() / "rows.csv";
    std::ofstream out(path, std::ios::binary);
    output::writeCsv(listOfMillions(1), [&](std::string_view bytes) {
      out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
    return path;
  }();
  return file;
}

constexpr std::array<std::string_view, 5> wanted = {"TIC-19", "2004", "a", "nothing has this", "Bäuerle"};

/// In turns with ripgrep, which counts the lines that have the text in any case, as the list does.
void findInAllColumns(benchmark::State& state) {
  const ResultList& list = listOfMillions(state.range(0));
  const std::string text(wanted.at(static_cast<std::size_t>(state.range(1))));
  const std::vector<ColumnIndex> columns = allColumns();
  Least ours;
  Least ripgreps;
  const std::string command =
      "rg -c -i -F '" + text + "' " + (state.range(0) == 1 ? csvFile().string() : std::string()) + " > /dev/null";
  std::size_t hits = 0;
  for (auto _ : state) {
    state.SetIterationTime(ours.measure([&] {
      const results::FoundCells found(
          list, std::make_shared<const results::MatchingCells>(list, TextMatcher(text, {}), columns));
      hits = found.count();
    }));
    if (state.range(0) == 1) ripgreps.measure([&] { benchmark::DoNotOptimize(std::system(command.c_str())); });
  }
  state.SetLabel(text);
  state.counters["cells"] = static_cast<double>(hits);
  state.counters["find_ms"] = ours.seconds * 1000;
  if (state.range(0) == 1) state.counters["rg_ms"] = ripgreps.seconds * 1000;
}
BENCHMARK(findInAllColumns)
    ->ArgsProduct({{1, fewMillions}, {0, 1, 2, 3, 4}})
    ->Iterations(7)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void openValuesOfColumn(benchmark::State& state) {
  const ResultList& list = listOfMillions(state.range(0));
  const ColumnIndex column{static_cast<std::size_t>(state.range(1))};
  results::ColumnValues values;
  Least least;
  for (auto _ : state) state.SetIterationTime(least.measure([&] { values = results::columnValues(list, column); }));
  state.SetLabel(std::string(query::auditColumns().at(column.value).caption));
  state.counters["values"] = static_cast<double>(values.values.size());
  state.counters["least_ms"] = least.seconds * 1000;
}
BENCHMARK(openValuesOfColumn)
    ->ArgsProduct({{1, fewMillions}, benchmark::CreateDenseRange(0, 17, 1)})
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// The most frequent value of each column, but where there are too many: the last row's.
void applyValueFilter(benchmark::State& state) {
  ResultList& list = listOfMillions(state.range(0));
  const ColumnIndex column{static_cast<std::size_t>(state.range(1))};
  const std::string value(list.text({list.rowCount() - 1}, column));
  Least least;
  std::size_t shown = 0;
  for (auto _ : state) {
    state.SetIterationTime(least.measure([&] {
      list.setFilter({{{.column = column, .values = {{value, false}}}}, {}});
    }));
    shown = list.rowCount();
    list.setFilter({});
  }
  state.SetLabel(std::string(query::auditColumns().at(column.value).caption));
  state.counters["shown"] = static_cast<double>(shown);
  state.counters["least_ms"] = least.seconds * 1000;
}
BENCHMARK(applyValueFilter)
    ->ArgsProduct({{1, fewMillions}, benchmark::CreateDenseRange(0, 17, 1)})
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void group(benchmark::State& state, const std::vector<GroupKey>& keys) {
  const ResultList& list = listOfMillions(state.range(0));
  std::size_t groups = 0;
  Least least;
  for (auto _ : state) state.SetIterationTime(least.measure([&] { groups = results::groupRows(list, keys).size(); }));
  state.counters["groups"] = static_cast<double>(groups);
  state.counters["least_ms"] = least.seconds * 1000;
}
void groupEventByUser(benchmark::State& state) {
  group(state, {{columnOf("Event")}, {columnOf("User Name")}});
}
void groupAreaByDay(benchmark::State& state) {
  group(state, {{columnOf("Area")}, {columnOf("Date Time"), DatePart::day}});
}
/// What the strip of activity shows.
void histogramByDay(benchmark::State& state) {
  group(state, {{columnOf("Date Time"), DatePart::day}, {columnOf("Event")}});
}
/// The summary of a column without repetitions.
void largestGroupsByEntryId(benchmark::State& state) {
  constexpr std::size_t mostShown = 10'000;
  const ResultList& list = listOfMillions(state.range(0));
  const std::vector<GroupKey> keys = {{columnOf("Entry ID")}};
  std::size_t groups = 0;
  Least least;
  for (auto _ : state)
    state.SetIterationTime(least.measure([&] {
      groups = results::groupListOf(list, {keys, {"Entry ID"}, "Count"}, mostShown).total;
    }));
  state.counters["groups"] = static_cast<double>(groups);
  state.counters["least_ms"] = least.seconds * 1000;
}
BENCHMARK(groupEventByUser)->Arg(1)->Arg(fewMillions)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(groupAreaByDay)->Arg(1)->Arg(fewMillions)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(largestGroupsByEntryId)
    ->Arg(1)
    ->Arg(fewMillions)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(histogramByDay)->Arg(1)->Arg(fewMillions)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

/// What a change of the rows costs a strip of activity: counting, which a worker does, and painting.
void countForStrip(benchmark::State& state) {
  const ResultList& list = listOfMillions(state.range(0));
  constexpr std::size_t room = 190;
  query::Activity activity;
  Least least;
  for (auto _ : state)
    state.SetIterationTime(least.measure([&] {
      activity = query::activityOf(ResultList(list), columnOf("Date Time"), columnOf("Event"),
                                   query::ActivityStep::hour, query::mostActivityKinds, room);
    }));
  state.counters["bars"] = static_cast<double>(activity.bars.size());
  state.counters["least_ms"] = least.seconds * 1000;
}
void paintStrip(benchmark::State& state) {
  const ResultList& list = listOfMillions(1);
  const auto step = static_cast<query::ActivityStep>(state.range(0));
  offscreenApplication<QApplication>();
  control::ActivityBars bars;
  bars.resize(1000, 92);
  bars.show();
  bars.setActivity(query::activityOf(list, columnOf("Date Time"), columnOf("Event"), step));
  QCoreApplication::processEvents();
  Least least;
  for (auto _ : state) state.SetIterationTime(least.measure([&] { bars.viewport()->repaint(); }));
  state.counters["bars"] = static_cast<double>(bars.activity().bars.size());
  state.counters["least_ms"] = least.seconds * 1000;
}
BENCHMARK(countForStrip)->Arg(1)->Arg(fewMillions)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(paintStrip)->DenseRange(0, 3)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

void historyOfOneItem(benchmark::State& state) {
  const ResultList& list = listOfMillions(state.range(0));
  const auto columns = query::itemColumns(list);
  const results::RowId record = list.rowId({list.rowCount() / 2});
  std::size_t changes = 0;
  Least least;
  for (auto _ : state)
    state.SetIterationTime(least.measure([&] { changes = query::itemHistory(list, *columns, record).changes.size(); }));
  state.counters["changes"] = static_cast<double>(changes);
  state.counters["least_ms"] = least.seconds * 1000;
}
BENCHMARK(historyOfOneItem)->Arg(1)->Arg(fewMillions)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
