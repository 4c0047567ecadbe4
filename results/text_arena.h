#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace korvel::results {

/// Uninitialised bytes on the heap.
// NOLINTNEXTLINE(modernize-avoid-c-arrays): an array of a size known at run time only; a vector would clear it first.
using HeapBytes = std::unique_ptr<char[]>;

/// Throws std::bad_alloc.
[[nodiscard]] inline HeapBytes heapBytes(std::size_t size) {
  return HeapBytes(new char[size]);
}

/// A text kept in a TextArena: the address of its length and bytes. The null address stands for a null value.
using StoredText = const char*;

/// Reads a stored text; the null address reads as empty.
[[nodiscard]] inline std::string_view textAt(StoredText stored) noexcept {
  if (stored == nullptr) return {};
  // The length comes first, seven bits a byte, the lowest first.
  std::size_t size = 0;
  for (unsigned shift = 0;; shift += 7) {
    const auto byte = static_cast<unsigned char>(*stored++);
    size |= static_cast<std::size_t>(byte & 0x7FU) << shift;
    if (byte < 0x80U) return {stored, size};
  }
}

/// Texts laid one after the other into chunks that never move: a stored text stays where it is as long as the arena
/// lives.
class TextArena {
 public:
  /// Throws std::bad_alloc; nothing is changed then.
  StoredText add(std::string_view text);

 private:
  char* allocate(std::size_t bytes);

  std::vector<HeapBytes> chunks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t chunkBytes_ = 0;
};

}  // namespace korvel::results
