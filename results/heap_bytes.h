#pragma once

#include <cstddef>
#include <memory>

namespace korvel::results {

/// Bytes on the heap that nobody has written yet.
// NOLINTNEXTLINE(modernize-avoid-c-arrays): an array of a size known at run time only; a vector would clear it first.
using HeapBytes = std::unique_ptr<char[]>;

/// Throws std::bad_alloc.
[[nodiscard]] inline HeapBytes heapBytes(std::size_t size) {
  return HeapBytes(new char[size]);
}

}  // namespace korvel::results
