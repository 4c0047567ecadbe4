// Reading a million records into the row store against stepping through the same answer.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/audit_file.h"
#include "bench/bare_sqlite.h"
#include "bench/least.h"
#include "bench/memory.h"
#include "bench/stored_answer.h"
#include "db/open_connection.h"

namespace korvel::bench {
namespace {

const std::string wholeTrail = "Select * from Korvel_Audit_Trails";

/// All sides in turn, on connections that are open already, so that a busy machine slows each of them; the minimum of
/// each counts.
void loadMillionRecords(benchmark::State& state) {
  const AuditFolder& folder = millionRecords();
  BareSqlite bare{folder.file()};
  const auto connection = db::openConnection(folder.connectionString());
  const std::size_t textBytes = bare.textBytes(wholeTrail);
  Least bareTime;
  Least readTime;
  Least copyTime;
  Least storeTime;
  // The page cache of the connection is filled already; what is resident behind it is the store.
  benchmark::DoNotOptimize(storedAnswer(*connection, wholeTrail));
  forgetPeak();
  const double residentBefore = residentMegabytes();
  const auto kept = storedAnswer(*connection, wholeTrail);
  forgetPeak();
  const double memoryMegabytes = residentMegabytes() - residentBefore;
  for (auto _ : state) {
    bareTime.measure([&] { benchmark::DoNotOptimize(bare.stepThrough(wholeTrail)); });
    readTime.measure([&] { benchmark::DoNotOptimize(bare.textBytes(wholeTrail)); });
    copyTime.measure([&] { benchmark::DoNotOptimize(bare.copyOut(wholeTrail)); });
    std::shared_ptr<const results::RowStore> store;
    state.SetIterationTime(storeTime.measure([&] { store = storedAnswer(*connection, wholeTrail); }));
    if (store->rowCount() != manyRows) return state.SkipWithError("rows are missing");
  }
  state.counters["bare_ms"] = bareTime.seconds * 1000;
  state.counters["read_ms"] = readTime.seconds * 1000;
  state.counters["copy_ms"] = copyTime.seconds * 1000;
  state.counters["copy_to_bare"] = copyTime.seconds / bareTime.seconds;
  state.counters["store_ms"] = storeTime.seconds * 1000;
  state.counters["store_to_bare"] = storeTime.seconds / bareTime.seconds;
  state.counters["store_to_read"] = storeTime.seconds / readTime.seconds;
  constexpr double mebibyte = 1024 * 1024;
  state.counters["memory_MB"] = memoryMegabytes * mebibyte / 1e6;
  state.counters["memory_to_text"] = memoryMegabytes * mebibyte / static_cast<double>(textBytes);
}
BENCHMARK(loadMillionRecords)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace
}  // namespace korvel::bench
