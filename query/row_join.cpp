#include "query/row_join.h"

#include <algorithm>
#include <charconv>
#include <new>

#include "base/text.h"
#include "results/memory_watch.h"

namespace korvel::query {
namespace {

constexpr std::string_view auditTypeColumn = "AuditType";
constexpr std::string_view entryNumberColumn = "Nr";
constexpr std::string_view tableNameColumn = "TableName";

std::uint32_t hashOf(std::string_view text) noexcept {
  const std::uint64_t hash = std::hash<std::string_view>()(text);
  return static_cast<std::uint32_t>(hash ^ hash >> 32U);
}

std::uint32_t hashOf(std::span<const db::Cell> cells) noexcept {
  std::uint32_t hash = 0;
  for (const db::Cell& cell : cells) hash = (hash ^ hashOf(cell.text)) * 0x9E3779B1U + (cell.isNull ? 1U : 0U);
  return hash ^ hash >> 15U;
}

/// Whether a row of this time comes with this slice and with no other. What is not sure is not.
bool isOwn(const db::Cell& time, const TimeSlice& slice) noexcept {
  if (time.isNull) return false;
  const auto minute = minuteOf(time.text);
  if (!minute || *minute < slice.first || *minute > slice.last) return false;
  constexpr std::size_t minuteLength = 16;
  const std::string_view seconds = time.text.substr(std::min(minuteLength, time.text.size()));
  // A time with an offset is compared by another clock.
  if (seconds.find_first_not_of("0123456789:.") != std::string_view::npos) return false;
  if (*minute != slice.first) return true;
  // The moment with which a slice begins is the one with which the slice before it ended. Engines may cut what is
  // behind the milliseconds.
  constexpr std::size_t milliseconds = 4;
  const auto point = seconds.find('.');
  const std::string_view counted = seconds.substr(0, point == std::string_view::npos ? point : point + milliseconds);
  return counted.find_first_of("123456789") != std::string_view::npos;
}

}  // namespace

void RowJoin::Index::insert(std::uint32_t hash, results::RowId row) {
  constexpr std::size_t leastSlots = 1024;
  if ((used_ + 1) * 4 > slots_.size() * 3) {
    std::vector<Slot> wider(std::max(leastSlots, slots_.size() * 2));
    for (const Slot& slot : slots_)
      if (slot.row != 0) place(wider, slot);
    slots_ = std::move(wider);
  }
  place(slots_, {hash, row.value + 1});
  ++used_;
}

void RowJoin::Index::place(std::vector<Slot>& slots, const Slot& slot) noexcept {
  const std::size_t mask = slots.size() - 1;
  std::size_t at = slot.hash & mask;
  while (slots[at].row != 0) at = (at + 1) & mask;
  slots[at] = slot;
}

RowJoin::RowJoin(const results::MemoryGauge& memory) : memory_(memory) {}

void RowJoin::beginCategory(bool hasRowsOfOtherTimes) {
  counts_.clear();
  beginAnswer(std::nullopt);
  hasRowsOfOtherTimes_ = hasRowsOfOtherTimes;
}

void RowJoin::beginAnswer(const std::optional<TimeSlice>& slice) {
  ++answerNumber_;
  slice_ = slice;
  answerBegin_ = lists_[0].size();
  before_ = {};
}

void RowJoin::repeatAnswer() {
  // What is counted by `counts_` begins again with the new number.
  ++answerNumber_;
  std::vector<std::uint32_t> before(store_->rowCount());
  for (std::size_t i = answerBegin_; i < lists_[0].size(); ++i) ++before[lists_[0][i].value];
  before_ = std::move(before);
}

bool RowJoin::cameBefore(results::RowId row) noexcept {
  if (row.value >= before_.size() || before_[row.value] == 0) return false;
  --before_[row.value];
  return true;
}

void RowJoin::add(const BufferedRows& rows) {
  if (rows.rowCount() == 0) return;
  try {
    beginResult(rows.fields());
    for (std::size_t i = 0; i < rows.rowCount(); ++i) {
      const std::span<const db::Cell> cells = rows.row(i);
      const bool comesOnce = !slice_ || (dateTime_ && isOwn(cells[*dateTime_], *slice_) &&
                                         (!hasRowsOfOtherTimes_ || isLimitedByDates(cells)));
      const results::RowId id = idOf(cells);
      if (comesOnce) {
        if (cameBefore(id)) continue;
      } else {
        Count& count = counts_[id.value];
        if (count.answer != answerNumber_) count.inAnswer = 0;
        count.answer = answerNumber_;
        if (++count.inAnswer <= count.listed) continue;
        ++count.listed;
      }
      lists_[0].push_back(id);
      if (auditType_)
        if (const auto list = listOfStoredAuditType(cells[*auditType_].text)) lists_[*list].push_back(id);
    }
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

bool RowJoin::isLimitedByDates(std::span<const db::Cell> cells) const noexcept {
  constexpr std::string_view limitedTables = "MS";
  return tableName_ && equalsIgnoringAsciiCase(cells[*tableName_].text.substr(0, limitedTables.size()), limitedTables);
}

void RowJoin::beginResult(const std::vector<db::Field>& fields) {
  const auto same = [](const db::Field& one, const db::Field& other) {
    return one.name == other.name && one.kind == other.kind;
  };
  if (store_->rowCount() > 0 && std::equal(fields.begin(), fields.end(), fields_.begin(), fields_.end(), same)) return;
  fields_ = fields;
  auditType_ = columnOf(fields_, auditTypeColumn);
  entryNumber_ = columnOf(fields_, entryNumberColumn).value_or(0);
  dateTime_ = columnOf(fields_, BufferedRows::dateTimeColumn);
  tableName_ = columnOf(fields_, tableNameColumn);
  store_->beginResult(fields_);
}

results::RowId RowJoin::idOf(std::span<const db::Cell> cells) {
  const std::uint32_t hash = hashOf(cells);
  if (const auto found = rows_.find(hash, [&](results::RowId row) { return isSame(row, cells); })) return *found;
  constexpr std::size_t bytesOfCode = 4;
  std::size_t bytes = cells.size() * bytesOfCode;
  for (const db::Cell& cell : cells) bytes += cell.text.size();
  memory_.grown(bytes);
  const results::RowId row = store_->append(cells);
  rows_.insert(hash, row);
  noteEntry(row, cells);
  return row;
}

bool RowJoin::isSame(results::RowId row, std::span<const db::Cell> cells) const noexcept {
  if (store_->widthOf(row) != cells.size()) return false;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const db::Cell stored = store_->cell(row, results::ColumnIndex{i});
    if (stored.isNull != cells[i].isNull || stored.text != cells[i].text) return false;
  }
  return true;
}

bool RowJoin::isNewEntry(results::RowId row, std::string_view number) {
  // Running numbers, as they nearly always are, cost a bit each.
  std::size_t value = 0;
  const auto [end, problem] = std::from_chars(number.data(), number.data() + number.size(), value);
  constexpr std::size_t bitsAtFirst = std::size_t{1} << 24U;
  constexpr std::size_t bitsOfRow = 64;
  const bool isPlain = problem == std::errc() && end == number.data() + number.size() &&
                       (number.size() == 1 || number.front() != '0') && number.front() != '-';
  if (isPlain && value < std::max(bitsAtFirst, bitsOfRow * store_->rowCount())) {
    if (value >= plainEntries_.size()) plainEntries_.resize(std::max(value + 1, plainEntries_.size() * 2));
    const bool isNew = !plainEntries_[value];
    plainEntries_[value] = true;
    // A large number may have come while so many bits would not have paid.
    if (!isNew || value < bitsAtFirst) return isNew;
  }
  const std::uint32_t hash = hashOf(number);
  const auto isThis = [&](results::RowId other) {
    return store_->cell(other, results::ColumnIndex{entryNumber_}).text == number;
  };
  if (entries_.find(hash, isThis)) return false;
  entries_.insert(hash, row);
  return true;
}

void RowJoin::noteEntry(results::RowId row, std::span<const db::Cell> cells) {
  constexpr std::size_t namedEntries = 10;
  if (entryNumber_ >= cells.size() || cells[entryNumber_].text.empty()) return;
  const std::string_view number = cells[entryNumber_].text;
  if (isNewEntry(row, number)) return;
  ++changedEntryCount_;
  const bool isNamed = std::find(changedEntries_.begin(), changedEntries_.end(), number) != changedEntries_.end();
  if (!isNamed && changedEntries_.size() < namedEntries) changedEntries_.emplace_back(number);
}

}  // namespace korvel::query
