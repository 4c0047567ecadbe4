#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "db/procedure/audit_conditions.h"

namespace korvel::db {

/// The values of one call of QueryAudits, in parameter order, quotes removed.
struct QueryAuditsCall {
  std::array<std::string, procedureParameterCount> values;
};

/// Reads `QueryAudits '...',...`: case-insensitive name, optional EXEC or EXECUTE, optional dbo. (also in brackets or
/// double quotes), T-SQL quoting. Nothing for a text that calls something else; throws Error for a call of QueryAudits
/// that the server would refuse (number of arguments, unclosed quote, text after the call).
[[nodiscard]] std::optional<QueryAuditsCall> parseQueryAuditsCall(std::string_view commandText);

}  // namespace korvel::db
