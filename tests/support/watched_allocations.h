#pragma once

#include <cstddef>

// For programs that contain watched_allocations.cpp: every allocation of theirs through operator new passes there.

namespace korvel::test {

/// How many allocations the program has made so far.
[[nodiscard]] std::size_t allocationCount() noexcept;

/// While it lives, every allocation of the program through operator new fails after the first `successes`.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t successes) noexcept;
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace korvel::test
