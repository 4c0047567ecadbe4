#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "results/row_store.h"

namespace korvel::results::test {

/// A value as a test writes it down; nothing is null.
using Value = std::optional<std::string>;
using Row = std::vector<Value>;
inline const std::nullopt_t null = std::nullopt;

inline std::vector<db::Field> fields(std::size_t count) {
  std::vector<db::Field> made;
  for (std::size_t i = 0; i < count; ++i) made.push_back({"F" + std::to_string(i), db::ColumnKind::text});
  return made;
}

inline std::vector<db::Cell> cells(const Row& row) {
  std::vector<db::Cell> made;
  for (const Value& value : row) {
    db::Cell cell;
    cell.isNull = !value.has_value();
    if (value) cell.text = *value;
    made.push_back(cell);
  }
  return made;
}

/// Adds a result set as wide as its first row.
inline void addResult(RowStore& store, const std::vector<Row>& rows) {
  store.beginResult(fields(rows.empty() ? 0 : rows.front().size()));
  for (const Row& row : rows) store.append(cells(row));
}

inline std::shared_ptr<const RowStore> storeOf(const std::vector<Row>& rows) {
  auto store = std::make_shared<RowStore>();
  addResult(*store, rows);
  return store;
}

inline Value valueOf(const RowStore& store, std::size_t row, std::size_t column) {
  const db::Cell cell = store.cell({static_cast<std::uint32_t>(row)}, {column});
  return cell.isNull ? Value{} : Value{std::string{cell.text}};
}

/// The row as wide as the result set that it came with.
inline Row rowOf(const RowStore& store, std::size_t row) {
  Row values;
  for (std::size_t column = 0; column < store.widthOf({static_cast<std::uint32_t>(row)}); ++column)
    values.push_back(valueOf(store, row, column));
  return values;
}

}  // namespace korvel::results::test
