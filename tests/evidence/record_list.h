#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "query/audit_record.h"
#include "results/result_list.h"

namespace korvel::test {

/// The columns of a record that a test sets; the others, and those that are "NULL", are null.
using Record = std::map<std::string, std::string>;

/// A list of an audit trail's records.
inline results::ResultList listOf(const std::vector<Record>& records) {
  results::ResultList list(results::RowFilling::standard);
  query::setUpAuditColumns(list);
  const auto store = std::make_shared<results::RowStore>();
  std::vector<db::Field> fields;
  for (const query::AuditColumn& column : query::auditColumns()) fields.push_back({std::string(column.name)});
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  for (const Record& record : records) {
    std::vector<db::Cell> cells;
    for (const query::AuditColumn& column : query::auditColumns()) {
      const auto found = record.find(std::string(column.name));
      cells.push_back(found == record.end() || found->second == "NULL" ? db::Cell{{}, true}
                                                                       : db::Cell{found->second, false});
    }
    rows.push_back(store->append(cells));
  }
  list.setRows(store, rows);
  return list;
}

}  // namespace korvel::test
