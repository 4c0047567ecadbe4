#include "evidence/recorded_rows.h"

#include <algorithm>
#include <future>
#include <optional>
#include <span>
#include <thread>
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

namespace {

/// Digests the rows [begin, begin + each.size()) of a list.
void digestRows(const results::ResultList& list, std::size_t begin, std::span<Digest> each) {
  const results::RowStore& store = *list.store();
  std::optional<RowDigester> digester;
  const db::Field* begun = nullptr;
  std::vector<db::Cell> cells;
  for (std::size_t i = 0; i < each.size(); ++i) {
    const results::RowId id = list.rowId({begin + i});
    const auto fields = store.fieldsOf(id);
    if (!digester || fields.data() != begun || fields.size() != cells.size()) {
      digester.emplace(fields);
      begun = fields.data();
      cells.resize(fields.size());
    }
    for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = store.cell(id, {column});
    each[i] = digester->digestOf(cells);
  }
}

}  // namespace

Manifest::Rows recordedRows(const results::ResultList& list) {
  Manifest::Rows rows;
  const std::size_t count = list.rowCount();
  if (count == 0) {
    rows.digest = digestOfRows({});
    return rows;
  }
  rows.columns = digestedNames(list.store()->fieldsOf(list.rowId({0})));
  rows.each.resize(count);
  // Threads share long lists.
  constexpr std::size_t rowsWorthAThread = 10'000;
  const std::size_t shares =
      std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 1 + count / rowsWorthAThread);
  std::vector<std::future<void>> others;
  const std::span<Digest> each(rows.each);
  for (std::size_t share = 1; share < shares; ++share) {
    const std::size_t begin = count * share / shares;
    const std::size_t end = count * (share + 1) / shares;
    others.push_back(
        std::async(std::launch::async, digestRows, std::cref(list), begin, each.subspan(begin, end - begin)));
  }
  digestRows(list, 0, each.first(count / shares));
  for (std::future<void>& other : others) other.get();
  rows.digest = digestOfRows(rows.each);
  return rows;
}

}  // namespace korvel::evidence
