#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace korvel::results {

/// What this process may still use, and what it could use at most: of the machine, or of its share where that is less.
struct MemoryState {
  std::uint64_t freeBytes = 0;
  std::uint64_t wholeBytes = 0;
};

/// Measures it now; nothing where the system does not tell. Takes a fraction of a millisecond.
[[nodiscard]] std::optional<MemoryState> memoryState();

/// How memory is measured: memoryState outside tests.
using MemoryGauge = std::function<std::optional<MemoryState>()>;

}  // namespace korvel::results
