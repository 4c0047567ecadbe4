#include "results/text_arena.h"

#include <algorithm>
#include <array>

#include "results/text_bytes.h"

namespace korvel::results {

namespace {

// Chunks grow with their arena: an answer of many columns and few rows must stay small.
constexpr std::size_t firstChunkBytes = 512;
constexpr std::size_t largestChunkBytes = std::size_t{64} * 1024;

}  // namespace

char* TextArena::allocate(std::size_t bytes) {
  if (bytes <= left_) {
    char* const place = next_;
    next_ += bytes;
    left_ -= bytes;
    return place;
  }
  if (chunks_.size() == chunks_.capacity()) chunks_.reserve(std::max<std::size_t>(8, chunks_.size() * 2));
  if (bytes > largestChunkBytes / 4) {
    // A long text gets a chunk of its own, so that the current one keeps its free end.
    chunks_.push_back(heapBytes(bytes));
    return chunks_.back().get();
  }
  const std::size_t wanted = std::max(bytes, std::clamp(chunkBytes_ * 2, firstChunkBytes, largestChunkBytes));
  chunks_.push_back(heapBytes(wanted));
  chunkBytes_ = wanted;
  next_ = chunks_.back().get() + bytes;
  left_ = wanted - bytes;
  return chunks_.back().get();
}

StoredText TextArena::add(std::string_view text) {
  std::array<char, 10> length{};
  std::size_t lengthBytes = 0;
  std::size_t rest = text.size();
  for (; rest >= 0x80U; rest >>= 7U) length[lengthBytes++] = static_cast<char>((rest & 0x7FU) | 0x80U);
  length[lengthBytes++] = static_cast<char>(rest);

  char* const stored = allocate(lengthBytes + text.size());
  for (std::size_t i = 0; i < lengthBytes; ++i) stored[i] = length[i];
  copyText(text, stored + lengthBytes);
  return stored;
}

}  // namespace korvel::results
