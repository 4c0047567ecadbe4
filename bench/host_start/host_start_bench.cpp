// From starting the viewer's process to its first painted window, against a program with an empty window and one with a
// window of plain toolkit widgets.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/least.h"

extern char** environ;

namespace korvel::bench {
namespace {

/// Runs a program; whether it succeeded.
bool runs(std::string program) {
  const std::array<char*, 2> arguments{program.data(), nullptr};
  pid_t process = 0;
  if (::posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) return false;
  int status = 0;
  return ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

void hostStart(benchmark::State& state) {
  ::setenv("QT_PLUGIN_PATH", KORVEL_BENCH_PLUGINS, 1);
  ::setenv("QT_QPA_GENERIC_PLUGINS", "firstpaint", 1);
  ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  // Default settings, independent of the user's.
  const std::string registry = std::filesystem::temp_directory_path() / "korvel-bench-without-settings" / "none.reg";
  ::setenv("KORVEL_REGISTRY", registry.c_str(), 1);

  Least empty;
  Least plain;
  Least viewer;
  bool good = true;
  for (auto _ : state) {
    empty.measure([&] { good = runs(KORVEL_BENCH_EMPTY_WINDOW) && good; });
    plain.measure([&] { good = runs(KORVEL_BENCH_PLAIN_WINDOW) && good; });
    state.SetIterationTime(viewer.measure([&] { good = runs(KORVEL_BENCH_VIEWER) && good; }));
    if (!good) return state.SkipWithError("a program did not come to its first window");
  }
  state.counters["empty_ms"] = empty.seconds * 1000;
  state.counters["viewer_ms"] = viewer.seconds * 1000;
  state.counters["plain_ms"] = plain.seconds * 1000;
  state.counters["plain_to_empty"] = plain.seconds / empty.seconds;
  state.counters["viewer_to_empty"] = viewer.seconds / empty.seconds;
}
BENCHMARK(hostStart)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);

}  // namespace
}  // namespace korvel::bench
