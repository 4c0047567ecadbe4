#include "results/shown_column.h"

#include "base/numbers.h"
#include "base/text.h"

namespace korvel::results {

ShownColumn::ShownColumn(const ResultList& list, ColumnIndex column) : list_(list), index_(column) {
  if (list.store() == nullptr) return;
  rewritten_ = list.rewritesEntryNumbers(column);
  hasExceptions_ = rewritten_ && list.hasRewrittenNegatives();
  for (const ResultRows& result : list.store()->results()) {
    const bool filled = list.fills(column, result.width);
    if (!parts_.empty() && parts_.back().isFilled == filled)
      parts_.back().end = result.end;
    else
      parts_.push_back({result.first, result.end, filled});
    if (filled) column_ = list.store()->column(column);
  }
}

std::string_view ShownColumn::shown(std::string_view stored) const noexcept {
  const std::string_view trimmed = trimBlanks(stored);
  return rewritten_ ? withoutLeadingZeros(trimmed) : trimmed;
}

std::string_view ShownColumn::exceptionAt(std::size_t row) const noexcept {
  return list_.textOf({static_cast<std::uint32_t>(row)}, index_);
}

}  // namespace korvel::results
