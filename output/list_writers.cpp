#include "output/list_writers.h"

#include <cstdint>
#include <span>
#include <vector>

#include "output/csv_writer.h"
#include "output/separated_text.h"

namespace korvel::output {

namespace {

using results::ColumnIndex;
using results::RowId;
using results::RowStore;

std::vector<db::Field> captionsOf(const results::ResultList& list) {
  std::vector<db::Field> captions;
  for (const results::ColumnHeader& column : list.columns()) captions.push_back({column.caption});
  return captions;
}

/// The fields of the record: those of the widest result set that the store holds.
std::vector<db::Field> recordFields(const results::ResultList& list) {
  if (const RowStore* store = list.store())
    for (std::size_t i = 0; i < store->rowCount(); ++i) {
      const auto fields = store->fieldsOf({static_cast<std::uint32_t>(i)});
      if (fields.size() == store->columnCount()) return {fields.begin(), fields.end()};
    }
  return captionsOf(list);
}

/// The first cells of a record, as many as `cells` takes.
void readRecord(const RowStore& store, RowId row, std::span<db::Cell> cells) {
  for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = store.cell(row, ColumnIndex{column});
}

}  // namespace

void writeDisplayedRows(const results::ResultList& list, RowWriter& writer, const RowProgress& progress) {
  writer.begin(captionsOf(list));
  std::vector<db::Cell> cells(list.columns().size());
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    for (std::size_t column = 0; column < cells.size(); ++column) cells[column].text = list.text({row}, {column});
    writer.row(cells);
    reportRows(progress, row + 1, list.rowCount());
  }
  writer.end();
}

void writeText(const results::ResultList& list, const ByteSink& sink) {
  SeparatedTextWriter writer(sink, textExportSeparator);
  writeDisplayedRows(list, writer);
}

void writeExchange(const results::ResultList& list, const ByteSink& sink) {
  SeparatedTextWriter writer(sink, exchangeSeparator);
  writeDisplayedRows(list, writer);
}

void writeCsv(const results::ResultList& list, const ByteSink& sink) {
  CsvWriter writer(sink);
  const std::vector<db::Field> fields = recordFields(list);
  writer.begin(fields);
  std::vector<db::Cell> cells(fields.size());
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    readRecord(*list.store(), list.rowId({row}), cells);
    writer.row(cells);
  }
  writer.end();
}

JsonReplacements writeJson(const results::ResultList& list, const ByteSink& sink) {
  JsonWriter writer(sink);
  const db::Field* namedFields = nullptr;
  std::vector<db::Cell> cells;
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    const RowId id = list.rowId({row});
    const auto fields = list.store()->fieldsOf(id);
    if (row == 0 || fields.data() != namedFields || fields.size() != cells.size()) {
      writer.begin(fields);
      namedFields = fields.data();
      cells.resize(fields.size());
    }
    readRecord(*list.store(), id, cells);
    writer.row(cells);
  }
  writer.end();
  return writer.replacements();
}

}  // namespace korvel::output
