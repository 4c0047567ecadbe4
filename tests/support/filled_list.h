#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "output/list_writers.h"
#include "results/result_list.h"
#include "results/row_store.h"
#include "tests/support/scripted_connection.h"

namespace korvel::test {

/// A list that shows all rows of one result set, its captions the names of the fields.
inline results::ResultList filledList(const std::vector<db::Field>& fields, const std::vector<ScriptedRow>& rows,
                                      results::RowFilling filling = results::RowFilling::whole) {
  auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> ids;
  for (const ScriptedRow& row : rows) {
    std::vector<db::Cell> cells;
    for (const auto& value : row) cells.push_back({value ? std::string_view(*value) : std::string_view{}, !value});
    ids.push_back(store->append(cells));
  }
  results::ResultList list(filling);
  std::vector<results::ColumnHeader> columns;
  for (const db::Field& field : fields) columns.push_back({field.name, results::standardColumnWidth, 0});
  list.setColumns(std::move(columns));
  list.setRows(std::move(store), std::move(ids));
  return list;
}

/// The output of a writer, as one text.
template <typename Write>
std::string written(Write write, const results::ResultList& list) {
  std::string bytes;
  write(list, [&bytes](std::string_view chunk) { bytes += chunk; });
  return bytes;
}

}  // namespace korvel::test
