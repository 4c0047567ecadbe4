// "Load all" in the real control, offscreen: how long it takes, how long the window stands still, and the memory that
// it takes. Of a million generated records, or of those in the folder KORVEL_BENCH_FOLDER (korvel-audit demo writes
// one).

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPushButton>
#include <QTableView>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/memory.h"
#include "bench/offscreen.h"
#include "bench/window_gaps.h"
#include "control/library_state.h"
#include "db/connection_string.h"
#include "korvel/AuditViewer.h"

namespace korvel::bench {
namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void loadAll(benchmark::State& state) {
  offscreenApplication<QApplication>();
  const char* const given = std::getenv("KORVEL_BENCH_FOLDER");
  const std::string folder = given != nullptr ? given : millionRecords().file().parent_path().string();
  const double textMegabytes =
      static_cast<double>(
          BareSqlite{std::filesystem::path(folder) / "Korvel_Audit.db"}.copyOut("SELECT * FROM Korvel_Audit_Trails")) /
      (1 << 20);
  AuditViewer viewer;
  viewer.InitProperties();
  control::libraryState().connection.ConnectionString = db::buildConnectionString(folder, "Korvel_Audit");
  viewer.UnlockControls();
  viewer.resize(1000, 700);
  viewer.show();
  QCoreApplication::processEvents();
  viewer.TriggerQuery();
  auto& button = *viewer.findChild<QPushButton*>(QStringLiteral("LoadAll"));
  auto& list = *viewer.findChild<QTableView*>(QStringLiteral("lvListView0"));
  WindowGaps gaps;
  for (auto _ : state) {
    forgetPeak();
    const double before = residentMegabytes();
    gaps.restart();
    const auto begin = Clock::now();
    button.click();
    state.SetIterationTime(millisecondsSince(begin) / 1000);
    state.counters["longest_gap_ms"] = gaps.longestMilliseconds();
    state.counters["peak_MB"] = peakMegabytes() - before;
    state.counters["kept_MB"] = residentMegabytes() - before;
  }
  state.counters["records"] = list.model()->rowCount();
  state.counters["text_MB"] = textMegabytes;
  const auto begin = Clock::now();
  list.scrollToBottom();
  viewer.repaint();
  state.counters["to_the_end_ms"] = millisecondsSince(begin);
}
BENCHMARK(loadAll)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace korvel::bench
