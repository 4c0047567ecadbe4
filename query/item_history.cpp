#include "query/item_history.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "query/audit_record.h"
#include "query/plant_time.h"
#include "results/date_text.h"
#include "results/memory_watch.h"

namespace korvel::query {

namespace {

using results::ColumnIndex;
using results::ResultList;
using results::RowId;

constexpr std::array<std::string_view, 5> identityNames = {"ProjectGUID", "DatabaseName", "TableName", "FieldName",
                                                           "EventItem"};

constexpr std::string_view summerTimeName = "T1";

/// Entry numbers by their value, other texts behind them.
bool isEarlierEntry(std::string_view a, std::string_view b) {
  const auto numberA = wholeNumber(a);
  const auto numberB = wholeNumber(b);
  if (!numberA || !numberB) return numberA.has_value() != numberB.has_value() ? numberA.has_value() : a < b;
  if (numberA->negative != numberB->negative) return numberA->negative;
  const auto isLess = [](std::string_view x, std::string_view y) {
    return x.size() != y.size() ? x.size() < y.size() : x < y;
  };
  return numberA->negative ? isLess(numberB->digits, numberA->digits) : isLess(numberA->digits, numberB->digits);
}

/// Whether two records agree in all columns as they are stored.
bool isSameRecord(const results::RowStore& store, RowId a, RowId b) {
  if (a == b) return true;
  if (store.widthOf(a) != store.widthOf(b)) return false;
  for (std::size_t column = 0; column < store.widthOf(a); ++column) {
    const db::Cell cellA = store.cell(a, {column});
    const db::Cell cellB = store.cell(b, {column});
    if (cellA.isNull != cellB.isNull || cellA.text != cellB.text) return false;
  }
  return true;
}

void findUnit(ItemHistory& history) {
  history.isNumeric = false;
  for (const ItemChange& change : history.changes) {
    for (const std::string_view text : {change.oldValue, change.newValue}) {
      if (text.empty()) continue;
      const auto quantity = quantityOf(text);
      if (!quantity || (history.isNumeric && quantity->unit != history.unit)) {
        history.isNumeric = false;
        return;
      }
      history.isNumeric = true;
      history.unit = quantity->unit;
    }
  }
}

}  // namespace

std::optional<ItemColumns> itemColumns(const ResultList& list) {
  ItemColumns columns;
  for (std::size_t i = 0; i < identityNames.size(); ++i) {
    const auto column = auditColumnOf(list, identityNames.at(i));
    if (!column) return std::nullopt;
    columns.identity.at(i) = *column;
  }
  for (const auto& [name, column] :
       {std::pair{"Nr", &columns.entryNumber}, std::pair{"DateTime", &columns.time},
        std::pair{"OldValue", &columns.oldValue}, std::pair{"NewValue", &columns.newValue}}) {
    const auto found = auditColumnOf(list, name);
    if (!found) return std::nullopt;
    *column = *found;
  }
  return columns;
}

std::optional<Quantity> quantityOf(std::string_view text) noexcept {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::size_t end = std::min(text.find_first_not_of("0123456789.,"), text.size());
  constexpr std::size_t mostDigits = 40;
  if (end == 0 || end > mostDigits || !isAllDigits(text.substr(0, 1))) return std::nullopt;
  std::array<char, mostDigits> digits{};
  std::copy_n(text.begin(), end, digits.begin());
  const auto written = text.substr(0, end);
  if (written.find('.') == std::string_view::npos && std::count(written.begin(), written.end(), ',') == 1)
    digits.at(written.find(',')) = '.';
  Quantity quantity;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + end, quantity.number);
  if (error != std::errc{} || stop != digits.data() + end) return std::nullopt;
  if (negative) quantity.number = -quantity.number;
  quantity.unit = trimBlanks(text.substr(end));
  return quantity;
}

std::vector<ItemHistory> itemHistories(const ResultList& list, const ItemColumns& columns,
                                       const results::RowFilter& conditions) {
  try {
    struct Row {
      std::array<std::string_view, 5> identity;
      std::string_view hour;
      bool isStandardTime = false;
      std::string_view time;
      std::string_view entry;
      RowId record;
    };
    // In autumn an hour comes twice, first as summer time; standard lists do not show which.
    const auto summerTime = auditColumnOf(list, summerTimeName);
    std::vector<Row> rows;
    const std::vector<std::uint8_t> passing = results::passingRecords(list, conditions);
    for (const RowId record : list.wholeRows()) {
      if (passing[record.value] == 0) continue;
      const std::string_view time = list.textOf(record, columns.time);
      const bool isStandardTime = summerTime && seasonOf(list.store()->cell(record, *summerTime)) != Season::summer;
      Row row{{},   results::datePart(time, results::DatePart::hour), isStandardTime,
              time, list.textOf(record, columns.entryNumber),         record};
      for (std::size_t i = 0; i < row.identity.size(); ++i)
        row.identity.at(i) = list.textOf(record, columns.identity.at(i));
      rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
      if (a.identity != b.identity) return a.identity < b.identity;
      if (a.hour != b.hour) return a.hour < b.hour;
      if (a.isStandardTime != b.isStandardTime) return b.isStandardTime;
      if (a.time != b.time) return a.time < b.time;
      if (isEarlierEntry(a.entry, b.entry) || isEarlierEntry(b.entry, a.entry)) return isEarlierEntry(a.entry, b.entry);
      return a.record < b.record;
    });
    // A record that belongs to several categories is several rows, and happened once.
    rows.erase(std::unique(rows.begin(), rows.end(),
                           [&](const Row& a, const Row& b) { return isSameRecord(*list.store(), a.record, b.record); }),
               rows.end());
    std::vector<ItemHistory> histories;
    for (const Row& row : rows) {
      if (histories.empty() || histories.back().identity != row.identity)
        histories.push_back({.identity = row.identity});
      std::vector<ItemChange>& changes = histories.back().changes;
      ItemChange change{row.record, row.time, list.textOf(row.record, columns.oldValue),
                        list.textOf(row.record, columns.newValue)};
      change.continues = changes.empty() || !histories.back().namesItem() || changes.back().newValue == change.oldValue;
      changes.push_back(change);
    }
    for (ItemHistory& history : histories)
      if (history.namesItem()) findUnit(history);
    return histories;
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

ItemHistory itemHistory(const ResultList& list, const ItemColumns& columns, RowId record) {
  results::RowFilter sameItem;
  for (const ColumnIndex column : columns.identity) {
    // A value that is null names nothing more than an empty one does.
    const std::string shown(list.textOf(record, column));
    sameItem.columns.push_back({.column = column, .values = {{shown, false}}});
    if (shown.empty()) sameItem.columns.back().values.push_back({{}, true});
  }
  std::vector<ItemHistory> histories = itemHistories(list, columns, sameItem);
  return histories.empty() ? ItemHistory{} : std::move(histories.front());
}

}  // namespace korvel::query
