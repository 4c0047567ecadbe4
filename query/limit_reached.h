#pragma once

#include <string>
#include <vector>

#include "query/completion_report.h"
#include "query/filter_tree.h"
#include "query/standard_query.h"

namespace korvel::query {

// Where an answer came with as many rows as the procedure returns at most, so that it may lack others: the captions of
// the categories, or that of the list of all audits, because all categories together come as one result set. In order;
// empty where the limit was reached nowhere.

/// `flags` were asked for. Result sets are told apart by their order alone: where another number of them came than was
/// asked for, they are named by their place, "result set 2 of 3".
[[nodiscard]] std::vector<std::string> limitReached(const CategoryFlags& flags, const QueryReport& report);
/// Of an answer that was completed: what the limit still cuts.
[[nodiscard]] std::vector<std::string> limitReached(const CompletionReport& report);

}  // namespace korvel::query
