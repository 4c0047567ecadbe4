#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "results/result_list.h"
#include "results/row_groups.h"

namespace korvel::results {

/// What the rows of a list are grouped by, and what the columns of their groups are called.
struct GroupQuestion {
  std::vector<GroupKey> keys;
  std::vector<std::string> captions;  ///< of the keys
  std::string countCaption;
};

inline constexpr std::size_t allGroups = std::numeric_limits<std::size_t>::max();

/// The groups of a list as a list of their own. The count is its first column, which alone sorts by numbers; the record
/// of a group has its number.
struct GroupList {
  GroupQuestion question;
  std::vector<RowGroup> groups;
  std::size_t total = 0;  ///< number of groups, those that are left out included
  ResultList list{RowFilling::whole};
};

/// The groups of the rows that `rows` shows, the `most` largest ones, the largest first. Throws Error when memory runs
/// out.
[[nodiscard]] GroupList groupListOf(const ResultList& rows, GroupQuestion question, std::size_t most = allGroups);

/// The same groups in the same order with the count in the last column. Throws Error when memory runs out.
[[nodiscard]] ResultList withCountLast(const GroupList& groups);

}  // namespace korvel::results
