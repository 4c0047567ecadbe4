#include "output/record_copies.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "output/csv_rows.h"

namespace korvel::output {

namespace {

using results::ColumnIndex;
using results::RowId;
using results::RowStore;

/// The fields of the record: those of the widest result set that the store holds.
std::vector<db::Field> recordFields(const results::ResultList& list) {
  if (const RowStore* store = list.store())
    for (std::size_t i = 0; i < store->rowCount(); ++i) {
      const auto fields = store->fieldsOf({static_cast<std::uint32_t>(i)});
      if (fields.size() == store->columnCount()) return {fields.begin(), fields.end()};
    }
  std::vector<db::Field> captions;
  for (const results::ColumnHeader& column : list.columns()) captions.push_back({column.caption});
  return captions;
}

/// The first cells of a record, as many as `cells` takes.
void readRecord(const RowStore& store, RowId row, std::span<db::Cell> cells) {
  for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = store.cell(row, ColumnIndex{column});
}

}  // namespace

void writeCsv(const results::ResultList& list, const ByteSink& sink) {
  RowBuffer out(sink);
  const std::vector<db::Field> fields = recordFields(list);
  writeCsvNames(fields, out);
  std::vector<db::Cell> cells(fields.size());
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    readRecord(*list.store(), list.rowId({row}), cells);
    writeCsvRow(cells, out);
  }
  out.flush();
}

JsonReplacements writeJson(const results::ResultList& list, const ByteSink& sink) {
  ChunkedText chunks(sink);
  JsonRecords records;
  const db::Field* namedFields = nullptr;
  std::vector<db::Cell> cells;
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    const RowId id = list.rowId({row});
    const auto fields = list.store()->fieldsOf(id);
    if (row == 0 || fields.data() != namedFields || fields.size() != cells.size()) {
      records.setFields(fields);
      namedFields = fields.data();
      cells.resize(fields.size());
    }
    readRecord(*list.store(), id, cells);
    records.appendRecord(cells, chunks.text());
    chunks.endLine();
  }
  records.appendEnd(chunks.text());
  chunks.flush();
  return records.replacements();
}

}  // namespace korvel::output
