#include "evidence/recorded_rows.h"

#include <utility>

namespace korvel::evidence {

void RowRecorder::begin(std::span<const db::Field> fields) {
  digester_ = std::make_unique<RowDigester>(fields);
  if (rows_.each.empty()) rows_.columns = digestedNames(fields);
}

Manifest::Rows RowRecorder::take() {
  rows_.digest = digestOfRows(rows_.each);
  return std::exchange(rows_, {});
}

Manifest::Rows recordedRows(const results::ResultList& list) {
  RowRecorder recorder;
  const results::RowStore* const store = list.store();
  const db::Field* begun = nullptr;
  std::vector<db::Cell> cells;
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    const results::RowId id = list.rowId({row});
    const auto fields = store->fieldsOf(id);
    if (row == 0 || fields.data() != begun || fields.size() != cells.size()) {
      recorder.begin(fields);
      begun = fields.data();
      cells.resize(fields.size());
    }
    for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = store->cell(id, {column});
    recorder.row(cells);
  }
  return recorder.take();
}

}  // namespace korvel::evidence
