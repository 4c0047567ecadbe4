#include "results/found_cells.h"

#include <algorithm>
#include <new>
#include <utility>

#include "results/memory_watch.h"

namespace korvel::results {

FoundCells::FoundCells(const ResultList& list, std::shared_ptr<const MatchingCells> cells)
    : list_(list), cells_(std::move(cells)) {
  if (cells_->isEmpty()) return;
  try {
    const std::size_t rows = list_.rowCount();
    hitsBefore_.reserve(rows / blockRows + 2);
    std::size_t hits = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      if (row % blockRows == 0) hitsBefore_.push_back(hits);
      hits += hitsIn({row});
    }
    hitsBefore_.push_back(hits);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

std::size_t FoundCells::numberOf(FoundCell cell) const noexcept {
  if (hitsBefore_.empty()) return 0;
  const std::size_t block = cell.row.value / blockRows;
  std::size_t number = hitsBefore_[block];
  for (std::size_t row = block * blockRows; row < cell.row.value; ++row) number += hitsIn({row});
  for (std::size_t place = 0; place <= cell.place; ++place)
    if (cells_->contains(list_.rowId(cell.row), place)) ++number;
  return number;
}

std::optional<FoundCell> FoundCells::next(FoundCell from, SearchDirection direction) const noexcept {
  const std::size_t rows = list_.rowCount();
  if (rows == 0 || cells_->isEmpty()) return std::nullopt;
  const bool forward = direction == SearchDirection::forward;
  const std::size_t start = std::min(from.row.value, rows - 1);
  // The row itself comes first, for what is behind `from`, and last, for what is before it.
  for (std::size_t step = 0; step <= rows; ++step) {
    const std::size_t row = (forward ? start + step : start + rows - step % rows) % rows;
    if (hitsIn({row}) == 0) continue;
    const RowId record = list_.rowId({row});
    std::optional<FoundCell> found;
    for (std::size_t i = 0; i < columns().size() && !found; ++i) {
      const std::size_t place = forward ? i : columns().size() - 1 - i;
      const bool passed = step == 0 && (forward ? place <= from.place : place >= from.place);
      if (!passed && cells_->contains(record, place)) found = FoundCell{{row}, place};
    }
    if (found) return found;
  }
  return std::nullopt;
}

std::optional<FoundCell> FoundCells::firstFrom(RowPosition row) const noexcept {
  if (list_.rowCount() == 0) return std::nullopt;
  const std::size_t start = row.value < list_.rowCount() ? row.value : 0;
  const std::size_t before = start == 0 ? list_.rowCount() - 1 : start - 1;
  return next({{before}, columns().size()}, SearchDirection::forward);
}

}  // namespace korvel::results
