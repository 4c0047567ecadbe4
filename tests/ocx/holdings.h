#pragma once

#include <cstddef>
#include <cstdint>

namespace korvel::test {

/// What a process has of the system. Wine counts neither handles nor drawing objects.
struct Holdings {
  /// The number of the next handle: the system gives the lowest that is free.
  std::uintptr_t nextHandle = 0;
  int threads = 0;
  int windows = 0;
  /// In use on all heaps.
  std::size_t bytes = 0;
};

[[nodiscard]] Holdings holdings();

/// Expects that rounds of work between the two have left nothing behind.
void expectNothingMore(const Holdings& before, const Holdings& after);

}  // namespace korvel::test
