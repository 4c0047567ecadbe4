#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

namespace korvel::bench {

/// The minimum time of several runs: on a machine with other work it is the figure that depends on the program alone.
struct Least {
  double seconds = std::numeric_limits<double>::infinity();

  /// Runs `work`; returns what this run took, in seconds.
  template <typename Work>
  double measure(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const double taken = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    seconds = std::min(seconds, taken);
    return taken;
  }
};

}  // namespace korvel::bench
