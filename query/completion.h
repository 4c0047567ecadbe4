#pragma once

#include <cstddef>
#include <stop_token>
#include <string>

#include "query/date_range.h"
#include "query/filter_tree.h"
#include "query/shared_join.h"
#include "query/standard_query.h"
#include "results/memory_watch.h"

namespace korvel::query {

/// What is to be completed, and with what.
struct CompletionOrder {
  CategoryFlags flags;
  DateRange range;
  std::string connectionString;
  Connector connect;
  results::MemoryGauge memory;
  std::size_t rowLimit = 0;  ///< the procedure's
};

/// Asks until everything has come, and joins it. Throws Error, or Stopped after a stop.
void runCompletion(const CompletionOrder& order, SharedJoin& joined, const std::stop_token& stop);

}  // namespace korvel::query
