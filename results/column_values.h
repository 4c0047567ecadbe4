#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "results/result_list.h"
#include "results/row_filter.h"
#include "results/text_matcher.h"

namespace korvel::results {

/// A value, and how many rows show it.
struct ValueCount {
  ShownValue value;
  std::size_t count = 0;
  friend bool operator==(const ValueCount&, const ValueCount&) = default;
};

/// The distinct values that a column shows.
struct ColumnValues {
  /// The most frequent ones first, equally frequent ones in the order of sorting. Empty where `tooMany`.
  std::vector<ValueCount> values;
  /// All values are dates or empty; `values` then has the days "2004-03-07", and what is empty.
  bool areDates = false;
  /// There are more values than the limit.
  bool tooMany = false;
};

/// More values than a reader looks through; reading so many takes no time that a reader notices.
inline constexpr std::size_t mostListedValues = 50'000;

/// The values of a column in the rows that meet the filter's conditions on other columns, so that a filter's own column
/// offers what it hides as well. With `search`, only those that match. Throws Error when memory runs out.
[[nodiscard]] ColumnValues columnValues(const ResultList& list, ColumnIndex column,
                                        const std::optional<TextMatcher>& search = {},
                                        std::size_t limit = mostListedValues);

/// The values of a column in the rows that the list shows. Throws Error when memory runs out.
[[nodiscard]] ColumnValues shownColumnValues(const ResultList& list, ColumnIndex column,
                                             std::size_t limit = mostListedValues);

}  // namespace korvel::results
