#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/procedure/audit_selection.h"
#include "db/procedure/query_audits_call.h"

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

}  // namespace korvel::db
