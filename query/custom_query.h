#pragma once

#include <optional>
#include <string>

#include "base/error.h"
#include "query/query_environment.h"
#include "query/standard_query.h"
#include "results/result_list.h"

namespace korvel::query {

enum class CustomOutcome {
  failed,     ///< connection or execution failed, at whatever point of the answer
  noRecords,  ///< no result set with columns, or the first of them without rows
  stopped,    ///< progress said so; the query's connection may end later, on a thread of its own
  filled
};

struct CustomReport {
  CustomOutcome outcome = CustomOutcome::failed;
  /// Why it failed: the server's number, text and, where it names one, line of the query's text.
  std::optional<Error> failure;
};

/// Runs any text over a connection of its own (`connectionString` is the AdvancedConnectionString), on a thread of its
/// own, takes back what the text has changed (db::Connection::executeRolledBack) and fills the custom list with the
/// first result set that has columns; later ones are not looked at. The list's rows are cleared first. Only an answer
/// that has arrived whole and has rows is shown: it brings its own columns, one a field under the field's name, 1440
/// twips wide, unsorted, for the order of the rows is the query's. Otherwise the list keeps the columns that it had,
/// without rows. Nothing that is thrown below leaves it.
CustomReport runCustomQuery(const std::string& text, const std::string& connectionString, const Connector& connect,
                            results::ResultList& list, const QueryProgress& progress = {},
                            const QueryEnvironment& environment = {});

}  // namespace korvel::query
