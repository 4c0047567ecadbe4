#pragma once

#include <string>
#include <utility>
#include <vector>

#include "query/audit_record.h"
#include "tests/support/scripted_connection.h"

namespace korvel::test {

/// The fields of the audit trail, as a server names them.
inline std::vector<db::Field> auditFields() {
  std::vector<db::Field> fields;
  for (const query::AuditColumn& column : query::auditColumns())
    fields.push_back({std::string(column.name), column.name == "Nr" ? db::ColumnKind::number : db::ColumnKind::text});
  return fields;
}

/// A record with this number and audit type; the other cells have the names of their columns.
inline ScriptedRow auditRow(std::optional<std::string> number, std::optional<std::string> auditType) {
  ScriptedRow row;
  for (const query::AuditColumn& column : query::auditColumns()) row.emplace_back(std::string(column.name));
  row[0] = std::move(number);
  row[15] = std::move(auditType);
  return row;
}

}  // namespace korvel::test
