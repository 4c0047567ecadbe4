// Commands on a list of a million records: fit columns, type ahead, select and sort, copy, find.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <array>
#include <memory>
#include <vector>

#include "bench/audit_file.h"
#include "bench/offscreen.h"
#include "bench/stored_answer.h"
#include "bench/window_gaps.h"
#include "control/list_finding.h"
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

/// A pattern is typed into the find bar, key after key, until its hits are counted; and for how long the window does
/// not answer meanwhile. The last pattern takes many steps for most texts.
constexpr std::array<const char*, 4> patterns = {"TIC-1\\d+", "\\d+\\.\\d+ bar$", "^(a|aa|\\w)*-19$",
                                                 "(\\w|\\w\\w|\\w\\w\\w)*!$"};

void findPattern(benchmark::State& state) {
  offscreenApplication<QApplication>();
  static QWidget window;
  static ManyRecords& many = records();
  many.view.setParent(&window);
  ui::FindHistory history;
  control::ListArea area(many.view, history);
  control::ListFinding finding(area, {.filter = [](const auto&, const auto&) {}, .closed = [] {}});
  finding.showTexts();
  window.resize(1000, 700);
  area.setGeometry(window.rect());
  window.show();
  finding.open();
  auto* const field = area.find->findChild<QComboBox*>();
  field->setEditText(QString());
  area.find->findChild<QAbstractButton*>(QStringLiteral("FindRegularExpression"))->setChecked(true);
  QCoreApplication::processEvents();
  const QString pattern = QLatin1String(patterns.at(static_cast<std::size_t>(state.range(0))));
  double longest = 0;
  WindowGaps gaps(std::chrono::milliseconds{1});
  for (auto _ : state) {
    gaps.restart();
    for (qsizetype keys = 1; keys <= pattern.size(); ++keys) {
      field->setEditText(pattern.left(keys));
      QCoreApplication::processEvents();
    }
    while (finding.isSearching()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    longest = std::max(longest, gaps.longestMilliseconds());
  }
  state.SetLabel((pattern + QStringLiteral(": ") + area.find->findChild<QLabel*>(QStringLiteral("FindCount"))->text())
                     .toStdString());
  state.counters["longest_gap_ms"] = longest;
  finding.close();
  many.view.setParent(nullptr);
  delete area.chips;
  delete area.find;
}
BENCHMARK(findPattern)
    ->DenseRange(0, static_cast<std::int64_t>(patterns.size()) - 1)
    ->Iterations(5)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
