#pragma once

#include <cstddef>

namespace korvel::test {

/// While it lives, every allocation of the program through operator new fails after the first `successes`.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::size_t successes) noexcept;
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace korvel::test
