#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace korvel::results {

/// An index with the number by which it is to be ordered.
struct WordItem {
  std::uint64_t word = 0;
  std::uint32_t index = 0;
};

/// Sorts `items` by their words, equal ones staying in order. `spare` has at least as many items; what it holds is
/// lost.
void sortByWord(std::span<WordItem> items, std::span<WordItem> spare);

}  // namespace korvel::results
