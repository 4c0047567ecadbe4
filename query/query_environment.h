#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

#include "db/worker.h"
#include "results/memory_watch.h"

namespace korvel::query {

/// Called again and again while a query works, with the number of rows so far, on the thread that waits for it. False
/// stops the query; what it throws fails it.
using QueryProgress = std::function<bool(std::size_t rows)>;

/// What a running query asks of the machine; tests bring what they like. Called on the thread that runs the query.
struct QueryEnvironment {
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
  /// Looked at while the answer grows: it fails before the machine has no memory left.
  results::MemoryGauge memory = results::memoryState;
  /// How the caller waits.
  db::WaitTiming pace{};
};

/// Looks at the machine's memory, at its pace, while an engine works.
class PacedMemoryCheck {
 public:
  explicit PacedMemoryCheck(QueryEnvironment environment) : environment_(std::move(environment)) {}

  /// Throws Error where the machine runs short of memory.
  void look(results::MemoryWatch& memory) {
    const auto now = environment_.now();
    if (last_ && now - *last_ < interval) return;
    last_ = now;
    memory.engineAtWork();
  }

 private:
  static constexpr std::chrono::milliseconds interval{50};

  QueryEnvironment environment_;
  std::optional<std::chrono::steady_clock::time_point> last_;
};

}  // namespace korvel::query
