#pragma once

#include <cstddef>
#include <limits>

// For programs that contain watched_allocations.cpp: every allocation of theirs through operator new passes there.

namespace korvel::test {

/// How many allocations the program has made so far.
[[nodiscard]] std::size_t allocationCount() noexcept;

/// How many bytes of them the program has not given back.
[[nodiscard]] std::size_t heldBytes() noexcept;

/// While it lives, allocations of the program through operator new fail after the first `successes`: `failures` of
/// them, all where none are named.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t successes,
                              std::size_t failures = std::numeric_limits<std::size_t>::max()) noexcept;
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace korvel::test
