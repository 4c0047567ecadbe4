#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>

#include "results/memory_watch.h"

namespace korvel::query {

/// Called again and again while a query works, before its first row too where the engine can, with the number of rows
/// so far. False stops the query. Called on the thread that runs it; what it throws fails the query.
using QueryProgress = std::function<bool(std::size_t rows)>;

/// What a running query asks of the machine; tests bring what they like.
struct QuerySurroundings {
  /// Time from one call of progress to the next, at least, by this clock.
  std::chrono::milliseconds interval{50};
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
  /// Looked at while the answer grows: it fails before the machine has no memory left.
  results::MemoryGauge memory = results::memoryState;
};

/// Looks, at its pace, whether a query may go on. Refers to what it was made of.
class PacedLook {
 public:
  PacedLook(const QueryProgress& progress, const QuerySurroundings& surroundings)
      : progress_(progress), surroundings_(surroundings) {}

  /// Looks at the clock and, when it is time, asks progress and `memory`; false once the query is to stop. Throws Error
  /// where the machine runs short of memory.
  bool look(std::size_t rows, results::MemoryWatch& memory) {
    if (stopped_) return false;
    const auto now = surroundings_.now();
    if (last_ && now - *last_ < surroundings_.interval) return true;
    last_ = now;
    memory.engineAtWork();
    stopped_ = progress_ && !progress_(rows);
    return !stopped_;
  }

  [[nodiscard]] bool stopped() const noexcept { return stopped_; }

 private:
  const QueryProgress& progress_;
  const QuerySurroundings& surroundings_;
  std::optional<std::chrono::steady_clock::time_point> last_;
  bool stopped_ = false;
};

}  // namespace korvel::query
