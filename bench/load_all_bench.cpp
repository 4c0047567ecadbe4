// "Load all" in the real control, offscreen: how long it takes, how long the window stands still, and the memory that
// it takes. Of a million generated records, or of those in the folder KORVEL_BENCH_FOLDER (korvel-audit demo writes
// one).

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPushButton>
#include <QTableView>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stop_token>
#include <thread>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/memory.h"
#include "bench/offscreen.h"
#include "control/library_state.h"
#include "db/connection_string.h"
#include "korvel/AuditViewer.h"

namespace korvel::bench {
namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// How long the window's thread takes at the most to come to what is asked of it: a call every ten milliseconds.
class WindowGaps {
 public:
  /// Of the thread that `window` lives in.
  explicit WindowGaps(QObject& window)
      : person_([this, &window](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            QMetaObject::invokeMethod(
                &window, [this] { answered(); }, Qt::QueuedConnection);
            std::this_thread::sleep_for(std::chrono::milliseconds{10});
          }
        }) {}
  void restart() {
    last_ = Clock::now();
    longest_ = 0;
  }
  [[nodiscard]] double longest() {
    answered();
    return longest_;
  }

 private:
  void answered() {
    longest_ = std::max(longest_, millisecondsSince(last_));
    last_ = Clock::now();
  }

  Clock::time_point last_ = Clock::now();
  double longest_ = 0;
  std::jthread person_;
};

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
  WindowGaps gaps(viewer);
  for (auto _ : state) {
    forgetPeak();
    const double before = residentMegabytes();
    gaps.restart();
    const auto begin = Clock::now();
    button.click();
    state.SetIterationTime(millisecondsSince(begin) / 1000);
    state.counters["longest_gap_ms"] = gaps.longest();
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
