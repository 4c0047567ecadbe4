#include "results/matching_cells.h"

#include <algorithm>
#include <bit>
#include <new>
#include <string>
#include <utility>

#include "base/text.h"
#include "results/memory_watch.h"
#include "results/shown_column.h"

namespace korvel::results {

namespace {

/// Of a word's bits; from there on looking at each row is faster than looking for the bits.
constexpr int manyBits = 12;

/// The matching rows of one column.
class ColumnSearch {
 public:
  ColumnSearch(const ShownColumn& column, const TextMatcher& matcher, std::size_t rows)
      : column_(column), matcher_(matcher), rows_(rows) {}

  /// A bit a row; empty where none matches.
  std::vector<std::uint64_t> run() {
    if (column_.hasExceptions() || column_.column() == nullptr) {
      column_.forEachRow(
          [&](std::string_view text, bool) { return static_cast<std::uint8_t>(matcher_.matches(text) ? 1 : 0); },
          [&](std::size_t row, std::uint8_t matches) {
            if (matches != 0) mark(row);
          });
      return std::move(bits_);
    }
    const bool emptyMatches = matcher_.matches({});
    for (const ShownColumn::Part& part : column_.parts()) {
      const std::size_t stored = part.isFilled ? std::min(part.end, column_.column()->size()) : part.first;
      if (stored > part.first)
        column_.column()->forEachBlock(
            part.first, stored,
            [&](std::size_t first, std::size_t count, auto codes) { searchCodes(first, count, codes); },
            [&](std::size_t first, std::size_t count, auto texts) { searchTexts(first, count, texts); });
      for (std::size_t row = std::max(part.first, stored); emptyMatches && row < part.end; ++row) mark(row);
    }
    return std::move(bits_);
  }

 private:
  static constexpr std::size_t wordBits = 64;

  void ensureBits() {
    if (bits_.empty()) bits_.resize((rows_ + wordBits - 1) / wordBits, 0);
  }
  void mark(std::size_t row) {
    ensureBits();
    bits_[row / wordBits] |= std::uint64_t{1} << row % wordBits;
  }

  [[nodiscard]] bool matches(StoredText stored) const { return matcher_.matches(column_.shown(textAt(stored))); }

  template <typename Codes>
  void searchCodes(std::size_t first, std::size_t count, Codes codes) {
    if (!codesSearched_) {
      const Column& column = *column_.column();
      matchesCode_.resize(column.codeCount());
      for (std::size_t code = 0; code < matchesCode_.size(); ++code) {
        matchesCode_[code] = matches(column.valueOf(static_cast<ValueCode>(code))) ? 1 : 0;
        someCodeMatches_ = someCodeMatches_ || matchesCode_[code] != 0;
      }
      codesSearched_ = true;
    }
    if (!someCodeMatches_) return;
    ensureBits();
    // Without a branch for each row: in a column where about half of the rows match it would mostly be mispredicted.
    for (std::size_t i = 0; i < count; ++i)
      bits_[(first + i) / wordBits] |= std::uint64_t{matchesCode_[codes(i)]} << (first + i) % wordBits;
  }

  template <typename Texts>
  void searchTexts(std::size_t first, std::size_t count, Texts texts) {
    // Texts that were stored one after the other are searched as one: most of them contain nothing that matches.
    for (std::size_t begin = 0; begin < count;) {
      const std::size_t end = endOfRun(begin, count, texts);
      if (!searchRun(first, begin, end, texts))
        for (std::size_t i = begin; i < end; ++i)
          if (matches(texts(i))) mark(first + i);
      begin = end;
    }
  }

  /// The texts from `begin` that surely lie in one piece of memory: addresses that ascend by little.
  template <typename Texts>
  [[nodiscard]] static std::size_t endOfRun(std::size_t begin, std::size_t count, Texts texts) {
    if (texts(begin) == nullptr) return begin + 1;
    std::size_t end = begin + 1;
    for (std::string_view last = textAt(texts(begin)); end < count; ++end) {
      const StoredText next = texts(end);
      if (next != last.data() + last.size()) break;
      last = textAt(next);
    }
    return end;
  }

  /// Searches the texts [begin, end), which lie one behind the other. False where that cannot be done.
  template <typename Texts>
  bool searchRun(std::size_t first, std::size_t begin, std::size_t end, Texts texts) {
    const std::string* const needle = matcher_.needle();
    if (needle == nullptr || end - begin < shortestRun) return false;
    if (needle->empty()) return true;
    const std::string_view last = textAt(texts(end - 1));
    const StoredText start = texts(begin);
    const std::string_view all(start, static_cast<std::size_t>(last.data() + last.size() - start));
    const bool exact = matcher_.options().exactCase;
    // Other letters may fold into ASCII ones.
    if (!exact && !isAscii(all)) return false;
    FoldedSearch folded(all, *needle);
    const auto find = [&](std::size_t from) { return exact ? all.find(*needle, from) : folded.next(from); };
    std::size_t row = begin;
    for (std::size_t at = find(0); at != std::string_view::npos;) {
      const StoredText place = start + at;
      row = rowAt(row, end, place, texts);
      const StoredText stored = texts(row);
      // What was found may lie in the length of a text, in two of them, or in blanks that are not shown.
      const std::string_view shown = column_.shown(textAt(stored));
      const bool inside = place >= shown.data() && place + needle->size() <= shown.data() + shown.size();
      if (inside || matcher_.matches(shown)) mark(first + row);
      if (++row == end) break;
      at = find(static_cast<std::size_t>(texts(row) - start));
    }
    return true;
  }

  /// The last row of [begin, end) whose text begins at or before `place`, which is mostly near.
  template <typename Texts>
  [[nodiscard]] static std::size_t rowAt(std::size_t begin, std::size_t end, StoredText place, Texts texts) {
    std::size_t step = 1;
    while (begin + step < end && texts(begin + step) <= place) {
      begin += step;
      step *= 2;
    }
    end = std::min(end, begin + step);
    while (end - begin > 1) {
      const std::size_t middle = begin + (end - begin) / 2;
      if (texts(middle) <= place)
        begin = middle;
      else
        end = middle;
    }
    return begin;
  }

  static constexpr std::size_t shortestRun = 16;

  const ShownColumn& column_;
  const TextMatcher& matcher_;
  std::size_t rows_;
  std::vector<std::uint64_t> bits_;
  std::vector<std::uint8_t> matchesCode_;
  bool codesSearched_ = false;
  bool someCodeMatches_ = false;
};

}  // namespace

MatchingCells::MatchingCells(const ResultList& list, const TextMatcher& matcher, std::span<const ColumnIndex> columns,
                             const std::stop_token& stop)
    : columns_(columns.begin(), columns.end()),
      rowsOf_(columns.size()),
      store_(list.sharedStore()),
      numbersRewritten_(list.rewritesEntryNumbers(ColumnIndex{0})) {
  if (list.store() == nullptr) return;
  try {
    const TextMatcher stoppable = matcher.until(stop);
    for (std::size_t place = 0; place < columns_.size() && !stop.stop_requested(); ++place)
      search(list, stoppable, place);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

void MatchingCells::search(const ResultList& list, const TextMatcher& matcher, std::size_t place) {
  const std::size_t rows = list.store()->rowCount();
  const ShownColumn column(list, columns_[place]);
  std::vector<std::uint64_t>& bits = rowsOf_[place];
  bits = ColumnSearch(column, matcher, rows).run();
  if (bits.empty()) return;
  hitsOfRecord_.resize(rows, 0);
  for (std::size_t word = 0; word < bits.size(); ++word) {
    const std::size_t first = word * wordBits;
    if (std::popcount(bits[word]) > manyBits) {
      for (std::size_t i = 0; i < std::min(wordBits, rows - first); ++i)
        hitsOfRecord_[first + i] = static_cast<std::uint16_t>(hitsOfRecord_[first + i] + (bits[word] >> i & 1U));
      continue;
    }
    for (std::uint64_t left = bits[word]; left != 0; left &= left - 1)
      ++hitsOfRecord_[first + static_cast<std::size_t>(std::countr_zero(left))];
  }
}

bool MatchingCells::areOf(const ResultList& list) const noexcept {
  return isStoreOf(store_, list) && list.rewritesEntryNumbers(ColumnIndex{0}) == numbersRewritten_;
}

std::vector<std::uint8_t> MatchingCells::matchingRecords() const {
  const auto store = store_.lock();
  std::vector<std::uint8_t> matching(store == nullptr ? 0 : store->rowCount(), 0);
  for (std::size_t record = 0; record < hitsOfRecord_.size(); ++record)
    matching[record] = hitsOfRecord_[record] != 0 ? 1 : 0;
  return matching;
}

}  // namespace korvel::results
