#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "db/connection.h"
#include "query/audit_record.h"
#include "query/date_range.h"
#include "query/filter_tree.h"
#include "results/free_memory.h"

namespace korvel::query {

/// The command text of the standard query: QueryAudits and its thirteen quoted values.
[[nodiscard]] std::string queryAuditsText(const CategoryFlags& flags, const DateRange& range);

/// Opens a connection for a connection string; db::openConnection outside tests.
using Connector = std::function<std::unique_ptr<db::Connection>(std::string_view connectionString)>;

enum class QueryOutcome {
  noCriteria,  ///< no root ticked; lists 0..4 cleared, nothing sent
  failed,      ///< connection or execution failed, at whatever point of the answer; lists stay empty
  noRecords,   ///< the first result set was empty; later ones are not looked at
  filled
};

struct QueryReport {
  QueryOutcome outcome = QueryOutcome::failed;
  /// Why it failed, for callers that may say so (the control itself stays silent).
  std::optional<Error> failure;
  /// How many result sets came with as many rows as the procedure returns at most (db::rowLimitPerResult): the server
  /// may hold more rows of those categories.
  std::size_t fullResults = 0;
};

/// Lists 0..5 of one control.
using ResultLists = std::array<results::ResultList, listCount>;
/// Six lists, the first five with the audit columns.
[[nodiscard]] ResultLists makeResultLists();

/// The standard query: clears lists 0..4, runs the call over a connection of its own, and spreads the rows by audit
/// type. Lists are filled only when the whole answer has arrived and the connection is closed; list 5 keeps its rows.
/// Sorts list `currentList` with its key and order. Nothing that is thrown below leaves it.
QueryReport runStandardQuery(const FilterTree& tree, const DateRange& range, const std::string& connectionString,
                             const Connector& connect, ResultLists& lists, std::size_t currentList,
                             const results::MemoryGauge& memory = results::memoryState);

}  // namespace korvel::query
