// The time from Esc until the window is usable again, while a server does not answer.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "bench/offscreen.h"
#include "control/library_state.h"
#include "db/worker.h"
#include "korvel/AuditViewer.h"
#include "tests/odbc/access_without_domain.h"
#include "tests/tds_server/server.h"

namespace korvel::bench {
namespace {

using Clock = std::chrono::steady_clock;

void stopping(benchmark::State& state, const std::function<void(test::tds::TdsServer&)>& behaviour) {
  if (!test::installedFreeTds()) return state.SkipWithError("the FreeTDS ODBC driver is not installed");
  offscreenApplication<QApplication>();
  test::tds::TdsServer tdsServer;
  tdsServer.answerOthers([](const test::tds::Command&) { return test::tds::Answer().silence(); });
  behaviour(tdsServer);
  db::odbc::ServerAccess access = test::accessWithoutDomain();
  access.options.trustServerCertificate = true;
  const std::string server = "localhost," + std::to_string(tdsServer.port());
  control::platform().connect = [&](std::string_view, const std::stop_token& stop) {
    db::odbc::ServerAccess stoppable = access;
    stoppable.stop = stop;
    return db::odbc::openServer(server, "Korvel_Audit", stoppable);
  };
  AuditViewer viewer;
  viewer.InitProperties();
  viewer.resize(1000, 700);
  viewer.show();
  QCoreApplication::processEvents();

  double longest = 0;
  double closed = 0;
  for (auto _ : state) {
    const std::size_t asked = tdsServer.record().commands.size();
    Clock::time_point escape;
    // Created here: the first event of its kind creates objects that belong to this thread.
    auto key = std::make_unique<QKeyEvent>(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    std::thread person([&] {
      if (!tdsServer.waitUntil([asked](const test::tds::Record& record) { return record.commands.size() > asked; }))
        return;
      escape = Clock::now();
      QCoreApplication::postEvent(&viewer, key.release());
    });
    viewer.TriggerQuery();
    const auto usable = Clock::now();
    person.join();
    const double taken = std::chrono::duration<double>(usable - escape).count();
    state.SetIterationTime(taken);
    longest = std::max(longest, taken);
    // The connection ends in the background, or is detached.
    while (db::hasAbandonedWorkers()) std::this_thread::yield();
    closed = std::max(closed, std::chrono::duration<double>(Clock::now() - escape).count());
  }
  state.counters["longest_ms"] = longest * 1000;
  state.counters["connection_closed_ms"] = closed * 1000;
}

void aServerThatNeverAnswers(benchmark::State& state) {
  stopping(state, [](test::tds::TdsServer&) {});
}
BENCHMARK(aServerThatNeverAnswers)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void aServerThatNoticesAfterASecond(benchmark::State& state) {
  const test::tds::Gate gate;
  std::thread opener([&] {
    while (!gate.waitUntilReached()) {
    }
    std::this_thread::sleep_for(std::chrono::seconds{1});
    gate.open();
  });
  stopping(state, [&](test::tds::TdsServer& tdsServer) { tdsServer.answerAttentionsAt(gate); });
  opener.join();
}
// A gate can be opened only once.
BENCHMARK(aServerThatNoticesAfterASecond)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

void aServerThatTakesNoNotice(benchmark::State& state) {
  stopping(state, [](test::tds::TdsServer& tdsServer) { tdsServer.ignoreAttentions(); });
}
BENCHMARK(aServerThatTakesNoNotice)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace korvel::bench
