#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "results/date_text.h"
#include "results/result_list.h"
#include "results/row_filter.h"

namespace korvel::results {

/// What rows are grouped by: the texts of a column, or a part of its dates.
struct GroupKey {
  ColumnIndex column;
  DatePart part = DatePart::whole;
};

/// Rows that show the same: a value for each key, and their number.
struct RowGroup {
  std::vector<ShownValue> values;
  std::size_t count = 0;
  friend bool operator==(const RowGroup&, const RowGroup&) = default;
};

/// The first groups of a list, and how many there are in all.
struct LargestGroups {
  std::vector<RowGroup> groups;
  std::size_t total = 0;
};

/// The rows that the list shows, in groups: the largest first, equally large ones in the order of sorting by the first
/// key, then the second one. At most `most` groups are made, so that a column without repetitions costs little. Throws
/// Error when memory runs out.
[[nodiscard]] LargestGroups largestGroups(const ResultList& list, std::span<const GroupKey> keys, std::size_t most);
/// The same with all groups.
[[nodiscard]] std::vector<RowGroup> groupRows(const ResultList& list, std::span<const GroupKey> keys);

}  // namespace korvel::results
