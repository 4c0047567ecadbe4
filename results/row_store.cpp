#include "results/row_store.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "base/error.h"
#include "results/column.h"
#include "results/memory_watch.h"

namespace korvel::results {

namespace {

constexpr std::size_t highestRowCount = std::numeric_limits<std::uint32_t>::max();

/// One result set of the answer.
struct Segment {
  std::size_t firstRow = 0;
  std::vector<db::Field> fields;
};

}  // namespace

struct RowStore::Impl {
  std::size_t rowCount = 0;
  std::size_t width = 0;  ///< of the result set that is arriving
  std::vector<Segment> segments;
  std::vector<Column> columns;

  [[nodiscard]] const Segment* segmentOf(RowId row) const noexcept {
    if (row.value >= rowCount) return nullptr;
    const auto after =
        std::upper_bound(segments.begin(), segments.end(), std::size_t{row.value},
                         [](std::size_t wanted, const Segment& segment) { return wanted < segment.firstRow; });
    return after == segments.begin() ? nullptr : &*std::prev(after);
  }

  void takeBackRow() noexcept {
    for (Column& column : columns)
      if (column.size() > rowCount) column.takeBackLastRow();
  }
};

RowStore::RowStore() : impl_(std::make_unique<Impl>()) {}
RowStore::~RowStore() = default;
RowStore::RowStore(RowStore&&) noexcept = default;
RowStore& RowStore::operator=(RowStore&&) noexcept = default;

void RowStore::beginResult(std::span<const db::Field> fields) {
  Impl& store = *impl_;
  try {
    Segment segment{store.rowCount, {fields.begin(), fields.end()}};
    if (store.columns.size() < fields.size()) store.columns.resize(fields.size());
    if (!store.segments.empty() && store.segments.back().firstRow == store.rowCount)
      store.segments.back() = std::move(segment);  // the one before brought no rows
    else
      store.segments.push_back(std::move(segment));
    store.width = fields.size();
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

RowId RowStore::append(std::span<const db::Cell> cells) {
  Impl& store = *impl_;
  if (store.rowCount == highestRowCount) throw Error{outOfMemoryNumber, "More rows than a list can hold"};
  const std::size_t width = std::min(cells.size(), store.width);
  try {
    for (std::size_t i = 0; i < width; ++i) store.columns[i].prepare(cells[i]);
    for (std::size_t i = 0; i < width; ++i) {
      Column& column = store.columns[i];
      if (column.size() != store.rowCount) column.padTo(store.rowCount);  // narrower result sets came before
      column.append(cells[i]);
    }
  } catch (const std::bad_alloc&) {
    store.takeBackRow();
    throw outOfMemory();
  }
  return {static_cast<std::uint32_t>(store.rowCount++)};
}

std::size_t RowStore::rowCount() const noexcept {
  return impl_->rowCount;
}

std::size_t RowStore::columnCount() const noexcept {
  return impl_->columns.size();
}

std::size_t RowStore::leastColumnCount() const noexcept {
  std::size_t least = columnCount();
  for (const Segment& segment : impl_->segments) least = std::min(least, segment.fields.size());
  return least;
}

std::size_t RowStore::widthOf(RowId row) const noexcept {
  return fieldsOf(row).size();
}

std::span<const db::Field> RowStore::fieldsOf(RowId row) const noexcept {
  const Segment* const segment = impl_->segmentOf(row);
  return segment == nullptr ? std::span<const db::Field>{} : std::span<const db::Field>{segment->fields};
}

db::Cell RowStore::cell(RowId row, ColumnIndex column) const noexcept {
  if (column.value >= impl_->columns.size()) return {{}, true};
  const StoredText stored = impl_->columns[column.value].stored(row.value);
  return {textAt(stored), stored == nullptr};
}

bool RowStore::isSameRecord(RowId left, RowId right) const noexcept {
  if (widthOf(left) != widthOf(right)) return false;
  for (std::size_t i = 0; i < widthOf(left); ++i)
    if (const db::Cell a = cell(left, {i}), b = cell(right, {i}); a.isNull != b.isNull || a.text != b.text)
      return false;
  return true;
}

const Column* RowStore::column(ColumnIndex column) const noexcept {
  return column.value < impl_->columns.size() ? &impl_->columns[column.value] : nullptr;
}

std::vector<ResultRows> RowStore::results() const {
  std::vector<ResultRows> results;
  for (const Segment& segment : impl_->segments) {
    if (!results.empty()) results.back().end = segment.firstRow;
    results.push_back({segment.firstRow, impl_->rowCount, segment.fields.size()});
  }
  std::erase_if(results, [](const ResultRows& each) { return each.first == each.end; });
  return results;
}

std::vector<std::uint32_t> RowStore::ranks(ColumnIndex column, bool numericKeys) const {
  try {
    std::vector<std::uint32_t> ranks(impl_->rowCount, 0);
    if (column.value < impl_->columns.size()) impl_->columns[column.value].fillRanks(ranks, numericKeys);
    return ranks;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

void RowStore::visitDistinct(ColumnIndex column, const std::function<void(std::string_view)>& visit) const {
  if (column.value < impl_->columns.size()) impl_->columns[column.value].visitDistinct(visit);
}

void RowStore::visitDistinct(ColumnIndex column, std::span<const RowId> rows,
                             const std::function<void(std::string_view)>& visit) const {
  try {
    if (column.value < impl_->columns.size()) impl_->columns[column.value].visitDistinct(rows, visit);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace korvel::results
