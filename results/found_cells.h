#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "results/result_list.h"
#include "results/text_matcher.h"

namespace korvel::results {

/// A cell of a list that matches what is looked for: a row as shown, and a place among the columns that were searched.
struct FoundCell {
  RowPosition row;
  std::size_t place = 0;
  friend constexpr auto operator<=>(FoundCell, FoundCell) = default;
};

enum class SearchDirection { forward, backward };

/// All cells of a list that match what is looked for. Cells are numbered row by row as the list shows them, within a
/// row in the order of the columns that were searched. Sorting and filtering the list do not invalidate it, because it
/// knows the matching records; other rows do.
class FoundCells {
 public:
  /// Searches these columns of all records of the list. Throws Error when memory runs out. `list` must outlive it.
  FoundCells(const ResultList& list, const TextMatcher& matcher, std::span<const ColumnIndex> columns);

  /// Whether a record's cell matches. `place` is the column's place among those that were searched.
  [[nodiscard]] bool contains(RowId row, std::size_t place) const noexcept {
    const std::vector<std::uint64_t>& bits = rowsOf_[place];
    const std::size_t word = row.value / wordBits;
    return word < bits.size() && (bits[word] >> row.value % wordBits & 1U) != 0;
  }
  [[nodiscard]] std::span<const ColumnIndex> columns() const noexcept { return columns_; }

  /// Number of matching cells in the rows that the list shows now. Goes through all of them.
  [[nodiscard]] std::size_t count() const noexcept;
  /// The number of a matching cell among them, counted from 1.
  [[nodiscard]] std::size_t numberOf(FoundCell cell) const noexcept;
  /// The next matching cell behind or before `from`, which need not match; at the list's end it starts again at the
  /// other one. Nothing where no row that is shown matches.
  [[nodiscard]] std::optional<FoundCell> next(FoundCell from, SearchDirection direction) const noexcept;
  /// The first matching cell at or behind the beginning of `row`, else the list's first one.
  [[nodiscard]] std::optional<FoundCell> firstFrom(RowPosition row) const noexcept;
  /// Which records have a matching cell: one byte a record, 0 or 1.
  [[nodiscard]] std::vector<std::uint8_t> matchingRecords() const;

 private:
  static constexpr std::size_t wordBits = 64;

  void search(const TextMatcher& matcher, std::size_t place);
  [[nodiscard]] std::size_t hitsIn(RowPosition row) const noexcept {
    return hitsOfRecord_.empty() ? 0 : hitsOfRecord_[list_.rowId(row).value];
  }

  const ResultList& list_;
  std::vector<ColumnIndex> columns_;
  std::vector<std::vector<std::uint64_t>> rowsOf_;  ///< a bit a record for each column; empty where nothing matches
  std::vector<std::uint16_t> hitsOfRecord_;         ///< empty where nothing matches
};

}  // namespace korvel::results
