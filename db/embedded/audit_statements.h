#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/procedure/audit_selection.h"
#include "db/procedure/query_audits_call.h"

struct sqlite3;

namespace korvel::db {

/// What an ordinary table is ordered by: its row numbers.
inline constexpr std::string_view rowNumberOrder = "_rowid_";

/// The statements whose answers, one after the other, are the answer of QueryAudits: plain SQL that any SQLite
/// connection runs. Each gives the first `rowLimit` rows of its condition in table order. `tableOrder` is what an ORDER
/// BY names for that: `rowNumberOrder`, the primary key of a table without row numbers, or nothing for a view, which
/// keeps its own order. Throws Error where the server would: with the date range on, a date parameter that is no date.
[[nodiscard]] std::vector<std::string> auditStatements(const QueryAuditsCall& call, std::string_view tableOrder,
                                                       std::size_t rowLimit = rowLimitPerResult);

/// The statement that selects rows of the trail without the procedure's limit.
[[nodiscard]] std::string auditSelectionStatement(const AuditSelection& selection, std::string_view tableOrder);

/// A function of the engine's own statements: name(value, from, to) is 1 where a stored time (see canonicalStoredTime)
/// lies between two moments in canonical form, both included, else 0; texts that are no times lie nowhere.
inline constexpr std::string_view storedTimeFunction = "korvel_time_within";

/// Makes the function known to a connection; gives SQLite's result code.
[[nodiscard]] int addStoredTimeFunction(sqlite3* handle) noexcept;

/// The statement that creates the audit trail table of an embedded database: the eighteen columns in table order. Texts
/// compare case-insensitively, as they do on the server. Ends with a semicolon.
[[nodiscard]] std::string auditTableSchema();

/// The statements that create the indexes which the standard query's statements use, each ended by a semicolon. Run
/// them after the rows are in. They are a matter of speed alone: every answer is the same without them.
[[nodiscard]] std::string auditIndexes();

}  // namespace korvel::db
