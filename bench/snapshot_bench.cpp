// Snapshots of a million records, and their comparison with the trail.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "base/paths.h"
#include "bench/audit_file.h"
#include "bench/least.h"
#include "bench/memory.h"
#include "db/embedded/audit_statements.h"
#include "db/open_connection.h"
#include "evidence/snapshot.h"
#include "evidence/snapshot_reader.h"
#include "evidence/trail_comparison.h"
#include "tests/support/temporary_folder.h"

namespace korvel::bench {
namespace {

/// Runs statements on a database of its own, as a program without this one would.
class Sqlite {
 public:
  explicit Sqlite(const std::filesystem::path& file) {
    if (sqlite3_open(utf8FromPath(file).c_str(), &handle_) != SQLITE_OK) throw std::runtime_error("cannot open");
  }
  ~Sqlite() { sqlite3_close(handle_); }
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;

  void run(const std::string& sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(handle_));
  }

 private:
  sqlite3* handle_ = nullptr;
};

evidence::SnapshotOrder orderFor(const AuditFolder& trail, const std::filesystem::path& folder) {
  evidence::SnapshotOrder order;
  order.source = {utf8FromPath(trail.file().parent_path()), "Korvel_Audit", "", ""};
  order.connectionString = trail.connectionString();
  order.connect = [](std::string_view text, const std::stop_token& stop) { return db::openConnection(text, stop); };
  order.folder = folder;
  order.program = "bench";
  order.programVersion = "1";
  return order;
}

db::AuditSelection wholeTrail() {
  db::AuditSelection all;
  all.dates = db::AuditSelection::Dates::all;
  all.numbers.emplace();
  return all;
}

/// Against VACUUM INTO of the same file, which copies the pages of rows and indexes, and against the part of it that a
/// copy row by row cannot save: the same indexes, made for the same rows.
void snapshotOfEmbedded(benchmark::State& state) {
  const AuditFolder& trail = millionRecords();
  const test::TemporaryFolder folder;
  Least taken;
  Least vacuum;
  Least indexes;
  int run = 0;
  for (auto _ : state) {
    const std::string name = std::to_string(run++);
    state.SetIterationTime(
        taken.measure([&] { (void)evidence::takeSnapshot(orderFor(trail, folder / ("s" + name))); }));
    const std::filesystem::path copy = folder / (name + ".db");
    vacuum.measure([&] { Sqlite(trail.file()).run("VACUUM INTO '" + utf8FromPath(copy) + "'"); });
    Sqlite bare(copy);
    bare.run("PRAGMA cache_size=-65536");
    for (const char* index : {"DateTime", "Type", "Event", "Area2", "Area3"})
      bare.run(std::string("DROP INDEX Korvel_Audit_Trails_") + index);
    indexes.measure([&] { bare.run(db::auditIndexes()); });
    std::filesystem::remove_all(folder / ("s" + name));
    std::filesystem::remove(copy);
  }
  state.counters["snapshot_s"] = taken.seconds;
  state.counters["vacuum_s"] = vacuum.seconds;
  state.counters["indexes_s"] = indexes.seconds;
  state.counters["times_vacuum"] = taken.seconds / vacuum.seconds;
  state.counters["indexes_times_vacuum"] = indexes.seconds / vacuum.seconds;
}
BENCHMARK(snapshotOfEmbedded)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

class CountingSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field> /*fields*/) override {}
  bool row(std::span<const db::Cell> cells) override {
    for (const db::Cell& cell : cells) bytes_ += cell.text.size();
    return true;
  }
  void endResult() override { benchmark::DoNotOptimize(bytes_); }

 private:
  std::size_t bytes_ = 0;
};

/// Against reading both sides, one after the other.
void comparison(benchmark::State& state) {
  const AuditFolder& trail = millionRecords();
  const test::TemporaryFolder folder;
  const std::filesystem::path snapshot = evidence::takeSnapshot(orderFor(trail, folder / "s")).file;
  Least compared;
  Least read;
  double peak = 0;
  for (auto _ : state) {
    forgetPeak();
    const double before = residentMegabytes();
    state.SetIterationTime(compared.measure([&] {
      evidence::RowStream earlier([&](db::ResultSink& sink, const std::stop_token&) {
        evidence::openSnapshot(snapshot)->select(wholeTrail(), sink);
      });
      evidence::RowStream later([&](db::ResultSink& sink, const std::stop_token&) {
        db::openConnection(trail.connectionString())->select(wholeTrail(), sink);
      });
      if (!evidence::compareTrails(earlier, later, manyRows).isUnchanged()) throw std::runtime_error("not the same");
    }));
    peak = peakMegabytes() - before;
    read.measure([&] {
      CountingSink sink;
      evidence::openSnapshot(snapshot)->select(wholeTrail(), sink);
      db::openConnection(trail.connectionString())->select(wholeTrail(), sink);
    });
  }
  state.counters["comparison_s"] = compared.seconds;
  state.counters["reading_both_s"] = read.seconds;
  state.counters["times_reading"] = compared.seconds / read.seconds;
  state.counters["peak_MB"] = peak;
}
BENCHMARK(comparison)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
