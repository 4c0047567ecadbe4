#pragma once

#include <optional>
#include <string_view>

#include "results/result_list.h"

namespace korvel::results {

/// The first row at or below `from`, going on at the top after the last one, whose text in `column` begins with
/// `beginning`, whatever the case. Nothing where there is none, and for an empty beginning. On the sort key of a sorted
/// list this takes some twenty looks at its rows, on any other column one look at each.
[[nodiscard]] std::optional<RowPosition> findPrefix(const ResultList& list, ColumnIndex column,
                                                    std::string_view beginning, RowPosition from);

}  // namespace korvel::results
