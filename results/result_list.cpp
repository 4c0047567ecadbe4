#include "results/result_list.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <new>
#include <utility>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "results/memory_watch.h"

namespace korvel::results {

namespace {

constexpr ColumnIndex entryNumberColumn{0};
constexpr std::string_view zeroBehindSign = "-0";

/// Whether a list fills this column of a record that has `width` columns.
constexpr bool isFilled(RowFilling filling, ColumnIndex column, std::size_t width) noexcept {
  if (filling == RowFilling::whole || column == entryNumberColumn) return column.value < width;
  return column.value + 3 <= width;  // deliberate: the last two columns of a record are not copied
}

/// The rows ordered by `keys` (one a row of the list), rows of equal keys staying in order.
std::vector<RowId> orderedBy(const std::vector<std::uint32_t>& keys, const std::vector<RowId>& rows, SortOrder order) {
  const std::uint32_t highest = *std::max_element(keys.begin(), keys.end());
  // Keys are ranks, hence dense: count them, unless the list shows but a few rows of a large store.
  constexpr std::size_t tooManyKeysPerRow = 16;
  std::vector<RowId> ordered(rows.size());
  if (highest / tooManyKeysPerRow > rows.size()) {
    std::vector<std::uint32_t> places(rows.size());
    for (std::size_t i = 0; i < places.size(); ++i) places[i] = static_cast<std::uint32_t>(i);
    std::stable_sort(places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) {
      return order == SortOrder::ascending ? keys[a] < keys[b] : keys[b] < keys[a];
    });
    std::transform(places.begin(), places.end(), ordered.begin(), [&](std::uint32_t place) { return rows[place]; });
    return ordered;
  }
  const auto slotOf = [&](std::uint32_t key) { return order == SortOrder::ascending ? key : highest - key; };
  std::vector<std::uint32_t> next(std::size_t{highest} + 1, 0);
  for (const std::uint32_t key : keys) ++next[slotOf(key)];
  std::uint32_t begin = 0;
  for (std::uint32_t& place : next) begin += std::exchange(place, begin);
  for (std::size_t i = 0; i < rows.size(); ++i) ordered[next[slotOf(keys[i])]++] = rows[i];
  return ordered;
}

/// The rows whose records pass, in the same order.
std::vector<RowId> passingRows(const std::vector<RowId>& rows, const std::vector<std::uint8_t>& passing) {
  std::size_t count = 0;
  for (const RowId row : rows) count += passing[row.value];
  std::vector<RowId> shown;
  shown.reserve(count);
  for (const RowId row : rows)
    if (passing[row.value] != 0) shown.push_back(row);
  return shown;
}

}  // namespace

void ResultList::setColumns(std::vector<ColumnHeader> columns) {
  columns_ = std::move(columns);
}

void ResultList::startOver(std::vector<ColumnHeader> columns) noexcept {
  clear();
  columns_ = std::move(columns);
  sortKey_ = {};
  sortOrder_ = SortOrder::ascending;
  sorted_ = false;
}

void ResultList::clear() noexcept {
  rows_ = {};
  filter_ = {};
  wholeRows_ = {};
  passing_ = {};
  store_.reset();
  entryNumbersRewritten_ = false;
  rewrittenNegatives_ = {};
}

void ResultList::setRows(std::shared_ptr<const RowStore> store, std::vector<RowId> rows) {
  clear();
  store_ = std::move(store);
  if (store_ == nullptr) return;
  rows_ = std::move(rows);
  if (!sorted_) return;
  try {
    sort();
  } catch (const Error&) {
    clear();
    throw;
  }
}

void ResultList::setFilter(RowFilter filter) {
  try {
    if (filter.isEmpty()) {
      if (!isFiltered()) return;
      rows_ = std::move(wholeRows_);
      filter_ = {};
      wholeRows_ = {};
      passing_ = {};
      return;
    }
    for (TextCondition& text : filter.texts) text.known = matchingRecords(*this, text);
    std::vector<std::uint8_t> passing = passingRecords(*this, filter);
    std::vector<RowId> shown = passingRows(isFiltered() ? wholeRows_ : rows_, passing);
    // Nothing fails from here on.
    if (!isFiltered()) wholeRows_ = std::move(rows_);
    rows_ = std::move(shown);
    passing_ = std::move(passing);
    filter_ = std::move(filter);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

ResultList ResultList::recordsOnly() const {
  try {
    ResultList copy(filling_);
    copy.columns_ = columns_;
    copy.store_ = store_;
    copy.entryNumbersRewritten_ = entryNumbersRewritten_;
    copy.rewrittenNegatives_ = rewrittenNegatives_;
    return copy;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

ResultList ResultList::unfiltered() const {
  try {
    ResultList copy = *this;
    copy.setFilter({});
    return copy;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

bool ResultList::fills(ColumnIndex column, std::size_t width) const noexcept {
  return isFilled(filling_, column, width);
}

bool ResultList::rewritesEntryNumbers(ColumnIndex column) const noexcept {
  return entryNumbersRewritten_ && column == entryNumberColumn;
}

bool ResultList::isFilledIn(RowId row, ColumnIndex column) const noexcept {
  return isFilled(filling_, column, store_->widthOf(row));
}

std::string_view ResultList::text(RowPosition row, ColumnIndex column) const noexcept {
  if (row.value >= rows_.size()) return {};
  return textOf(rows_[row.value], column);
}

std::string_view ResultList::textOf(RowId row, ColumnIndex column) const noexcept {
  if (!isFilledIn(row, column)) return {};
  const std::string_view shown = trimBlanks(store_->cell(row, column).text);
  return rewritesEntryNumbers(column) ? rewrittenNumber(row, shown) : shown;
}

void ResultList::visitTexts(ColumnIndex column, const std::function<void(std::string_view)>& visit) const {
  // A column that the widest record does not fill is filled by none.
  if (store_ == nullptr || !isFilled(filling_, column, store_->columnCount())) return;
  const bool rewritten = rewritesEntryNumbers(column);
  const auto show = [&](std::string_view stored) {
    const std::string_view shown = trimBlanks(stored);
    const auto negative = rewritten && shown.starts_with(zeroBehindSign) ? wholeNumber(shown) : std::nullopt;
    if (negative)
      visit(std::string(negative->negative ? "-" : "").append(negative->digits));
    else
      visit(rewritten ? withoutLeadingZeros(shown) : shown);
  };
  const bool everyRecordFills = isFilled(filling_, column, store_->leastColumnCount());
  if (everyRecordFills && rows_.size() == store_->rowCount()) return store_->visitDistinct(column, show);
  if (everyRecordFills) return store_->visitDistinct(column, rows_, show);
  try {
    std::vector<RowId> filled;
    std::copy_if(rows_.begin(), rows_.end(), std::back_inserter(filled),
                 [&](RowId row) { return isFilledIn(row, column); });
    store_->visitDistinct(column, filled, show);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

std::string_view ResultList::rewrittenNumber(RowId row, std::string_view shown) const noexcept {
  if (shown.starts_with(zeroBehindSign)) {
    const auto found = std::lower_bound(rewrittenNegatives_.begin(), rewrittenNegatives_.end(), row,
                                        [](const auto& each, RowId wanted) { return each.first < wanted; });
    if (found != rewrittenNegatives_.end() && found->first == row) return found->second;
  }
  return withoutLeadingZeros(shown);
}

std::vector<std::pair<RowId, std::string>> ResultList::rewriteNegatives(const std::vector<RowId>& rows,
                                                                        const std::vector<std::uint32_t>& keys) const {
  const auto storedText = [&](RowId row) { return trimBlanks(store_->cell(row, entryNumberColumn).text); };
  // Texts below zero stand before all other numbers: mostly a look at the least text tells that there are none.
  std::size_t least = 0;
  for (std::size_t i = 0; i < keys.size(); ++i)
    if (keys[i] != 0 && (keys[least] == 0 || keys[i] < keys[least])) least = i;
  const std::string_view leastText = storedText(rows[least]);
  if (leastText.empty() || leastText.front() > '-') return {};

  std::vector<std::pair<RowId, std::string>> rewritten;
  for (const RowId row : rows) {
    const std::string_view shown = storedText(row);
    if (!shown.starts_with(zeroBehindSign)) continue;
    const auto number = wholeNumber(shown);
    if (number) rewritten.emplace_back(row, std::string(number->negative ? "-" : "").append(number->digits));
  }
  std::sort(rewritten.begin(), rewritten.end());
  return rewritten;
}

void ResultList::clickColumn(ColumnIndex column) {
  if (column.value >= columns_.size()) return;
  int tag = columns_[column.value].tag;
  if (column == sortKey_) tag = tag == 0 ? -1 : 0;
  sortAs(column, tag == 0 ? SortOrder::ascending : SortOrder::descending);
  columns_[column.value].tag = tag;
}

void ResultList::sortBy(ColumnIndex key, SortOrder order) {
  sortAs(key, order);
  if (key.value < columns_.size()) columns_[key.value].tag = order == SortOrder::ascending ? 0 : -1;
}

void ResultList::sort() {
  sortAs(sortKey_, sortOrder_);
}

void ResultList::sortAs(ColumnIndex key, SortOrder order) {
  const bool byEntryNumber = key == entryNumberColumn;
  // Ordering by entry number rewrites the numbers of a standard list; a custom list shows what the server sent.
  const bool rewrites = byEntryNumber && filling_ == RowFilling::standard && !entryNumbersRewritten_;
  std::vector<RowId>& rows = isFiltered() ? wholeRows_ : rows_;
  if (!rows.empty()) {
    try {
      std::vector<ColumnCondition> conditions = filter_.columns;
      for (ColumnCondition& each : conditions)
        if (rewrites && each.column == entryNumberColumn) removeLeadingZeros(each);
      const std::vector<std::uint32_t> ranks = store_->ranks(key, byEntryNumber);
      std::vector<std::uint32_t> keys(rows.size());
      // Rows that do not fill the column rank with the empty text, which is 0.
      for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = isFilledIn(rows[i], key) ? ranks[rows[i].value] : 0;
      auto rewritten = rewrites ? rewriteNegatives(rows, keys) : std::vector<std::pair<RowId, std::string>>{};
      if (!std::is_sorted(keys.begin(), keys.end()) || order == SortOrder::descending) {
        std::vector<RowId> ordered = orderedBy(keys, rows, order);
        if (isFiltered()) rows_ = passingRows(ordered, passing_);
        rows = std::move(ordered);
      }
      filter_.columns = std::move(conditions);
      if (rewrites) rewrittenNegatives_ = std::move(rewritten);
    } catch (const std::bad_alloc&) {
      throw outOfMemory();
    }
  }
  // Nothing fails from here on.
  sortKey_ = key;
  sortOrder_ = order;
  sorted_ = true;
  if (rewrites) entryNumbersRewritten_ = true;
}

HeaderIcon ResultList::headerIcon(ColumnIndex column) const noexcept {
  if (!sorted_ || column != sortKey_) return HeaderIcon::none;
  return sortOrder_ == SortOrder::ascending ? HeaderIcon::ascending : HeaderIcon::descending;
}

std::string recordCountText(std::size_t count, std::string_view label) {
  return std::to_string(count).append(" ").append(label);
}

}  // namespace korvel::results
