#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "base/error.h"
#include "query/standard_query.h"
#include "results/free_memory.h"
#include "results/result_list.h"

namespace korvel::query {

/// Called again and again while a query works, before its first row too where the engine can, with the number of rows
/// so far. False stops the query. Called on the thread that runs it; what it throws fails the query.
using QueryProgress = std::function<bool(std::size_t rows)>;

/// What a running query asks of the machine; tests bring what they like.
struct QuerySurroundings {
  /// Time from one call of progress to the next, at least, by this clock.
  std::chrono::milliseconds interval{50};
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;
  /// Looked at while the answer grows: it fails before the machine has no memory left.
  results::MemoryGauge memory = results::memoryState;
};

enum class CustomOutcome {
  failed,     ///< connection or execution failed, at whatever point of the answer
  noRecords,  ///< no result set with columns, or the first of them without rows
  stopped,    ///< progress said so
  filled
};

struct CustomReport {
  CustomOutcome outcome = CustomOutcome::failed;
  /// Why it failed: the server's number, text and, where it names one, line of the query's text.
  std::optional<Error> failure;
};

/// Runs any text over a connection of its own (`connectionString` is the AdvancedConnectionString) and fills the custom
/// list with the first result set that has columns; later ones are not looked at. The list's rows are cleared first.
/// Only an answer that has arrived whole and has rows is shown: it brings its own columns, one a field under the
/// field's name, 1440 twips wide, unsorted, for the order of the rows is the query's. Otherwise the list keeps the
/// columns that it had, without rows. Nothing that is thrown below leaves it.
CustomReport runCustomQuery(const std::string& text, const std::string& connectionString, const Connector& connect,
                            results::ResultList& list, const QueryProgress& progress = {},
                            const QuerySurroundings& surroundings = {});

}  // namespace korvel::query
