// Commands on a list of a million records: fit columns, type ahead, select and sort, copy.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <memory>
#include <vector>

#include "bench/audit_file.h"
#include "bench/offscreen.h"
#include "bench/stored_answer.h"
#include "control/result_list_view.h"
#include "db/open_connection.h"
#include "query/audit_record.h"

namespace korvel::bench {
namespace {

using control::ResultListModel;
using control::ResultListView;
using results::RowId;

/// The list of all audits with a million records, and every second one of them.
struct ManyRecords {
  explicit ManyRecords(std::uint32_t step) : model(list), view((offscreenApplication<QApplication>(), model)) {
    query::setUpAuditColumns(list);
    const auto store =
        storedAnswer(*db::openConnection(millionRecords().connectionString()), "Select * from Korvel_Audit_Trails");
    std::vector<RowId> rows;
    for (std::uint32_t row = 0; row < store->rowCount(); row += step) rows.push_back({row});
    {
      const ResultListModel::RowsChange change(model);
      list.setRows(store, rows);
    }
    view.resize(1000, 700);
    view.applyColumnWidths();
    view.show();
    QCoreApplication::processEvents();
  }
  results::ResultList list{results::RowFilling::standard};
  ResultListModel model;
  ResultListView view;
};

ManyRecords& records() {
  static ManyRecords all(1);
  return all;
}

void autoSizeColumn(benchmark::State& state) {
  ManyRecords& many = records();
  const int column = static_cast<int>(state.range(0));
  for (auto _ : state) many.view.autoSizeColumn(column);
  state.SetLabel(many.model.headerData(column, Qt::Horizontal).toString().toStdString());
  state.counters["width"] = many.view.columnWidth(column);
}
BENCHMARK(autoSizeColumn)->DenseRange(0, 17)->Unit(benchmark::kMillisecond);

void autoSizeAllColumns(benchmark::State& state) {
  static ManyRecords half(2);
  ManyRecords& many = state.range(0) == 1 ? records() : half;
  for (auto _ : state)
    for (int column = 0; column < many.model.columnCount(); ++column) many.view.autoSizeColumn(column);
  state.counters["rows"] = many.model.rowCount();
}
BENCHMARK(autoSizeAllColumns)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

/// One letter that no row begins with: the longest search.
void typeAhead(benchmark::State& state) {
  ManyRecords& many = records();
  const bool sorted = state.range(0) != 0;
  // A list that has been sorted stays so; one that is not is searched in its first column.
  if (sorted) many.view.clickHeader(1);
  for (auto _ : state) {
    many.view.keyboardSearch(QStringLiteral("~"));
    many.view.keyboardSearch(QStringLiteral("2"));
  }
  state.SetLabel(sorted ? "sorted" : "not sorted");
}
BENCHMARK(typeAhead)->Arg(0)->Arg(1)->Iterations(5)->Unit(benchmark::kMillisecond);

void selectAllAndSort(benchmark::State& state) {
  ManyRecords& many = records();
  for (auto _ : state) {
    many.view.selectAll();
    if (state.range(0) != 0)
      many.view.selectionModel()->select(many.model.index(500000, 0),
                                         QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    many.view.clickHeader(1);
    many.view.repaint();
  }
  state.SetLabel(state.range(0) != 0 ? "all but one" : "all");
}
BENCHMARK(selectAllAndSort)->Arg(0)->Arg(1)->Iterations(4)->Unit(benchmark::kMillisecond);

/// All rows, which are too many, and the largest number that can be copied.
void copyRows(benchmark::State& state) {
  ManyRecords& many = records();
  const auto rows = static_cast<int>(state.range(0));
  bool isRefused = false;
  QObject::connect(&many.view, &ResultListView::refused, &many.view, [&](const QString&) { isRefused = true; });
  many.view.selectionModel()->select({many.model.index(0, 0), many.model.index(rows - 1, 17)},
                                     QItemSelectionModel::ClearAndSelect);
  for (auto _ : state) many.view.copySelection();
  QObject::disconnect(&many.view, &ResultListView::refused, nullptr, nullptr);
  state.SetLabel(isRefused ? "refused" : "copied");
}
BENCHMARK(copyRows)->Arg(1000)->Arg(50000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
