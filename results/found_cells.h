#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "results/matching_cells.h"

namespace korvel::results {

/// A cell of a list that matches what is looked for: a row as shown, and a place among the columns that were searched.
struct FoundCell {
  RowPosition row;
  std::size_t place = 0;
  friend constexpr auto operator<=>(FoundCell, FoundCell) = default;
};

enum class SearchDirection { forward, backward };

/// The matching cells of the rows that a list shows, numbered row by row as the list shows them, within a row in the
/// order of the columns that were searched. Sorting and filtering the list invalidate it, but not the cells that it is
/// made from.
class FoundCells {
 public:
  /// `list` must outlive it and show these records. Goes through all rows. Throws Error when memory runs out.
  FoundCells(const ResultList& list, std::shared_ptr<const MatchingCells> cells);

  [[nodiscard]] const MatchingCells& cells() const noexcept { return *cells_; }
  [[nodiscard]] std::span<const ColumnIndex> columns() const noexcept { return cells_->columns(); }

  /// Number of matching cells in the rows that the list shows.
  [[nodiscard]] std::size_t count() const noexcept { return hitsBefore_.empty() ? 0 : hitsBefore_.back(); }
  /// The number of a matching cell among them, counted from 1.
  [[nodiscard]] std::size_t numberOf(FoundCell cell) const noexcept;
  /// The next matching cell behind or before `from`, which need not match; at the list's end it starts again at the
  /// other one. Nothing where no row that is shown matches.
  [[nodiscard]] std::optional<FoundCell> next(FoundCell from, SearchDirection direction) const noexcept;
  /// The first matching cell at or behind the beginning of `row`, else the list's first one.
  [[nodiscard]] std::optional<FoundCell> firstFrom(RowPosition row) const noexcept;

 private:
  static constexpr std::size_t blockRows = 1024;

  [[nodiscard]] std::size_t hitsIn(RowPosition row) const noexcept { return cells_->hitsIn(list_.rowId(row)); }

  const ResultList& list_;
  std::shared_ptr<const MatchingCells> cells_;
  /// The number of hits before each block of rows, and of all; empty where nothing matches.
  std::vector<std::size_t> hitsBefore_;
};

}  // namespace korvel::results
