#pragma once

#include <string>
#include <vector>

#include "results/row_filter.h"

namespace korvel::results {

/// A choice among the days that a column of dates shows, and among what it shows that is no day: empty and null.
struct DayChoice {
  std::vector<ShownValue> whole;   ///< all rows of these
  std::vector<ShownValue> partly;  ///< of these days the rows that were shown before the choice
  std::vector<ShownValue> none;    ///< no rows of these
  bool othersToo = false;          ///< days that are not listed stay as they were; else they are none
};

/// The conditions on a column of dates after a choice. `before` are those that it had, all of them on this column, also
/// on hours and single times; with `othersToo` they only exclude.
[[nodiscard]] std::vector<ColumnCondition> chosenDays(const std::vector<ColumnCondition>& before, ColumnIndex column,
                                                      const DayChoice& choice);

}  // namespace korvel::results
