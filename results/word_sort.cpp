#include "results/word_sort.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace korvel::results {

namespace {

constexpr std::size_t fewItems = 256;  // below, counting 256 possible bytes costs more than comparing
constexpr unsigned wordBits = 64;
constexpr unsigned digitBits = 8;

bool less(const WordItem& a, const WordItem& b) noexcept {
  return a.word < b.word;
}

}  // namespace

void sortByWord(std::span<WordItem> items, std::span<WordItem> spare) {
  // Running numbers and time stamps mostly arrive in their order.
  if (std::is_sorted(items.begin(), items.end(), less)) return;
  if (items.size() < fewItems) {
    std::sort(items.begin(), items.end(), [](const WordItem& a, const WordItem& b) {
      return a.word != b.word ? a.word < b.word : a.index < b.index;
    });
    return;
  }
  std::uint64_t varying = 0;
  for (const WordItem& item : items) varying |= item.word ^ items.front().word;

  std::span<WordItem> from = items;
  std::span<WordItem> to = spare.first(items.size());
  for (unsigned shift = 0; shift < wordBits; shift += digitBits) {
    if ((varying >> shift & 0xFFU) == 0) continue;
    std::array<std::size_t, 256> next{};
    for (const WordItem& item : from) ++next[item.word >> shift & 0xFFU];
    std::size_t begin = 0;
    for (std::size_t& place : next) {
      const std::size_t count = place;
      place = begin;
      begin += count;
    }
    for (const WordItem& item : from) to[next[item.word >> shift & 0xFFU]++] = item;
    std::swap(from, to);
  }
  if (from.data() != items.data()) std::copy(from.begin(), from.end(), items.begin());
}

}  // namespace korvel::results
