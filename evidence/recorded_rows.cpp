#include "evidence/recorded_rows.h"

#include <algorithm>
#include <future>
#include <optional>
#include <span>
#include <thread>
#include <utility>

#include "output/workbook.h"

namespace korvel::evidence {

RecordedForms recordedForms(std::string_view outputFormat) noexcept {
  return outputFormat == "xlsx" ? RecordedForms::storedAndCells : RecordedForms::stored;
}

void StampRecorder::begin(std::span<const db::Field> fields) {
  columns_ = query::stampColumnsOf(fields);
  if (!columns_ || stamps_) return;
  stamps_.emplace();
  stamps_->column = fields[columns_->stamp].name;
  if (columns_->flag) stamps_->flag = fields[*columns_->flag].name;
}

void StampRecorder::row(std::span<const db::Cell> cells) {
  if (!columns_) return;
  const auto cell = [cells](std::size_t column) { return column < cells.size() ? cells[column] : db::Cell{{}, true}; };
  const db::Cell stamp = cell(columns_->stamp);
  const auto wall = query::wallTimeOf(stamp.text);
  if (!wall) return;
  ++stamps_->count;
  if (wall->offset) ++stamps_->withOffset;
  if (columns_->entryNumber && columns_->flag)
    repeated_.add(cell(*columns_->entryNumber), stamp.text, *wall, cell(*columns_->flag));
}

void StampRecorder::add(const StampRecorder& other) {
  if (!other.stamps_) return;
  if (stamps_) {
    stamps_->count += other.stamps_->count;
    stamps_->withOffset += other.stamps_->withOffset;
  } else {
    stamps_ = other.stamps_;
  }
  repeated_.add(other.repeated_);
}

std::optional<RecordedStamps> StampRecorder::take() {
  if (stamps_)
    for (query::TimesOfDay& times : repeated_.all())
      stamps_->shownTwice.push_back({std::move(times.fromStamp), std::move(times.toStamp)});
  return std::exchange(stamps_, {});
}

std::vector<db::Field> CellDigester::readBackFields(std::span<const db::Field> fields) {
  std::vector<db::Field> names;
  output::WorkbookCell cell;
  for (const db::Field& field : fields) {
    cell.assignText(field.name);
    names.push_back({std::string(cell.readBack().text)});
  }
  return names;
}

CellDigester::CellDigester(std::span<const db::Field> fields)
    : fields_(fields.begin(), fields.end()),
      digester_(readBackFields(fields)),
      written_(fields.size()),
      readBack_(fields.size()) {}

Digest CellDigester::digestOf(std::span<const db::Cell> cells) {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    written_[i].assign(fields_[i].kind, i < cells.size() ? cells[i] : db::Cell{{}, true});
    readBack_[i] = written_[i].readBack();
  }
  return digester_.digestOf(readBack_);
}

void RowRecorder::begin(std::span<const db::Field> fields) {
  digester_ = std::make_unique<RowDigester>(fields);
  if (forms_ == RecordedForms::storedAndCells) cellDigester_ = std::make_unique<CellDigester>(fields);
  stamps_.begin(fields);
  if (rows_.each.empty()) rows_.columns = digestedNames(fields);
}

void RowRecorder::row(std::span<const db::Cell> cells) {
  rows_.each.push_back(digester_->digestOf(cells));
  if (cellDigester_) rows_.cells.push_back(cellDigester_->digestOf(cells));
  stamps_.row(cells);
}

Manifest::Rows RowRecorder::take() {
  rows_.digest = digestOfRows(rows_.each);
  rows_.stamps = stamps_.take();
  return std::exchange(rows_, {});
}

namespace {

/// What is digested of the rows [begin, begin + each.size()) of a list; `cells` is empty, or has as many.
struct Share {
  std::size_t begin = 0;
  std::span<Digest> each;
  std::span<Digest> cells;
  StampRecorder stamps{};
};

void digestRows(const results::ResultList& list, std::span<const db::Field> workbookFields, Share& share) {
  const results::RowStore& store = *list.store();
  std::optional<RowDigester> digester;
  std::optional<CellDigester> cellDigester;
  if (!share.cells.empty()) cellDigester.emplace(workbookFields);
  const db::Field* begun = nullptr;
  std::vector<db::Cell> cells;
  for (std::size_t i = 0; i < share.each.size(); ++i) {
    const results::RowId id = list.rowId({share.begin + i});
    const auto fields = store.fieldsOf(id);
    if (!digester || fields.data() != begun || fields.size() != cells.size()) {
      digester.emplace(fields);
      share.stamps.begin(fields);
      begun = fields.data();
      cells.resize(fields.size());
    }
    for (std::size_t column = 0; column < cells.size(); ++column) cells[column] = store.cell(id, {column});
    share.each[i] = digester->digestOf(cells);
    if (cellDigester) share.cells[i] = cellDigester->digestOf(cells);
    share.stamps.row(cells);
  }
}

}  // namespace

Manifest::Rows recordedRows(const results::ResultList& list, RecordedForms forms) {
  Manifest::Rows rows;
  const std::size_t count = list.rowCount();
  if (count == 0) {
    rows.digest = digestOfRows({});
    return rows;
  }
  rows.columns = digestedNames(list.store()->fieldsOf(list.rowId({0})));
  rows.each.resize(count);
  std::vector<db::Field> workbookFields;
  if (forms == RecordedForms::storedAndCells) {
    workbookFields = output::workbookFields(list);
    rows.cells.resize(count);
  }
  // Threads share long lists.
  constexpr std::size_t rowsWorthAThread = 10'000;
  const std::size_t shares =
      std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 1 + count / rowsWorthAThread);
  std::vector<Share> parts;
  for (std::size_t share = 0; share < shares; ++share) {
    const std::size_t begin = count * share / shares;
    const std::size_t size = count * (share + 1) / shares - begin;
    parts.push_back({begin, std::span(rows.each).subspan(begin, size), {}});
    if (!rows.cells.empty()) parts.back().cells = std::span(rows.cells).subspan(begin, size);
  }
  const std::span<const db::Field> ofWorkbook(workbookFields);
  std::vector<std::future<void>> others;
  for (std::size_t share = 1; share < shares; ++share)
    others.push_back(std::async(std::launch::async, digestRows, std::cref(list), ofWorkbook, std::ref(parts[share])));
  digestRows(list, ofWorkbook, parts.front());
  for (std::future<void>& other : others) other.get();
  for (std::size_t share = 1; share < shares; ++share) parts.front().stamps.add(parts[share].stamps);
  rows.stamps = parts.front().stamps.take();
  rows.digest = digestOfRows(rows.each);
  return rows;
}

}  // namespace korvel::evidence
