#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/twips.h"
#include "results/row_filter.h"
#include "results/row_store.h"

namespace korvel::results {

enum class SortOrder { ascending = 0, descending = 1 };
/// Images of the header image list.
enum class HeaderIcon { none = 0, ascending = 1, descending = 2 };

struct ColumnHeader {
  std::string caption;
  Twips width;
  /// Sort direction: 0 ascending, -1 descending.
  int tag = 0;
};

inline constexpr Twips standardColumnWidth{1440};

/// How many of a record's columns a list shows.
enum class RowFilling {
  standard,  ///< all but the last two: deliberate, so "Comments" and "Summer Time" stay empty in the standard lists
  whole      ///< every column (custom queries)
};

/// One report-style list: headers, the rows it shows (by number, from a shared RowStore), sort key and order.
/// It knows no widget; the control's model reads it.
class ResultList {
 public:
  explicit ResultList(RowFilling filling) : filling_(filling) {}

  /// Replaces the headers; rows are not touched.
  void setColumns(std::vector<ColumnHeader> columns);
  [[nodiscard]] const std::vector<ColumnHeader>& columns() const noexcept { return columns_; }

  /// Another answer begins: drops the rows, replaces the headers and switches sorting off. What an earlier answer's
  /// columns were sorted by means nothing for others, and these rows come in the order that their query asks for.
  void startOver(std::vector<ColumnHeader> columns) noexcept;

  /// Drops the rows (and the reference to their store) and the filter; headers, sort key and order stay.
  void clear() noexcept;
  /// Replaces the rows; no filter is active then. A list whose sorting is on sorts them at once; where memory runs out
  /// for that, it throws Error and the list has no rows, rather than rows in an order that its header denies.
  void setRows(std::shared_ptr<const RowStore> store, std::vector<RowId> rows);

  /// Shows only the rows that pass; an empty filter shows all. Conditions on texts are evaluated once: the list's
  /// filter knows their results. Throws Error when memory runs out; the list then shows what it showed before. Sorting
  /// afterwards changes the order of the rows that are shown, and not which they are.
  void setFilter(RowFilter filter);
  [[nodiscard]] const RowFilter& filter() const noexcept { return filter_; }
  [[nodiscard]] bool isFiltered() const noexcept { return !filter_.isEmpty(); }
  /// A list of the same records, with the texts that this one shows, that shows no rows: for evaluating the records on
  /// another thread. Throws Error when memory runs out.
  [[nodiscard]] ResultList recordsOnly() const;
  /// A copy that shows all rows, in the same order. Throws Error when memory runs out.
  [[nodiscard]] ResultList unfiltered() const;

  /// Number of rows that are shown. Positions, texts and records below are those of the rows that are shown.
  [[nodiscard]] std::size_t rowCount() const noexcept { return rows_.size(); }
  /// Number of rows, those that a filter hides included.
  [[nodiscard]] std::size_t wholeRowCount() const noexcept { return wholeRows().size(); }
  /// The records of all rows, in order. A record that belongs to several of the categories asked for is several rows.
  [[nodiscard]] std::span<const RowId> wholeRows() const noexcept { return isFiltered() ? wholeRows_ : rows_; }
  /// Text of a cell as it is shown: blanks trimmed, null empty, columns that are not filled empty.
  [[nodiscard]] std::string_view text(RowPosition row, ColumnIndex column) const noexcept;
  /// Calls `visit` with every text that the column shows in some row, at least once each and hardly more often where
  /// they repeat; cells that show nothing may be passed over. Throws Error when memory runs out.
  void visitTexts(ColumnIndex column, const std::function<void(std::string_view)>& visit) const;
  /// The record behind a row.
  [[nodiscard]] RowId rowId(RowPosition row) const noexcept { return rows_[row.value]; }
  [[nodiscard]] const RowStore* store() const noexcept { return store_.get(); }
  /// The same, to be shared with another list.
  [[nodiscard]] std::shared_ptr<const RowStore> sharedStore() const noexcept { return store_; }
  /// Text of a record's cell as the list shows or would show it.
  [[nodiscard]] std::string_view textOf(RowId row, ColumnIndex column) const noexcept;
  /// Whether the list shows this column of records that have `width` columns.
  [[nodiscard]] bool fills(ColumnIndex column, std::size_t width) const noexcept;
  /// Whether the column shows numbers without their leading zeros; and whether negative ones are among them.
  [[nodiscard]] bool rewritesEntryNumbers(ColumnIndex column) const noexcept;
  [[nodiscard]] bool hasRewrittenNegatives() const noexcept { return !rewrittenNegatives_.empty(); }

  // Sorting throws Error when memory runs out; rows, key, order and tags then stay as they were.

  /// A click on a header: again on the sort key inverts its direction, then the list is sorted by it.
  void clickColumn(ColumnIndex column);
  /// Switches sorting on with the current key and order. Sort key 0 orders entry numbers numerically (nine digits) and
  /// leaves those of a standard list without leading zeros.
  void sort();
  /// Sets key and order, then sorts (tool and tests).
  void sortBy(ColumnIndex key, SortOrder order);

  [[nodiscard]] ColumnIndex sortKey() const noexcept { return sortKey_; }
  [[nodiscard]] SortOrder sortOrder() const noexcept { return sortOrder_; }
  [[nodiscard]] bool isSorted() const noexcept { return sorted_; }
  /// The picture beside a caption: on the sort key of a list whose sorting is on, else none.
  [[nodiscard]] HeaderIcon headerIcon(ColumnIndex column) const noexcept;

 private:
  RowFilling filling_;
  std::vector<ColumnHeader> columns_;
  std::shared_ptr<const RowStore> store_;
  std::vector<RowId> rows_;  ///< that are shown
  RowFilter filter_;
  std::vector<RowId> wholeRows_;       ///< all rows, while there is a filter
  std::vector<std::uint8_t> passing_;  ///< a byte a record: whether it passes the filter, while there is one
  ColumnIndex sortKey_;
  SortOrder sortOrder_ = SortOrder::ascending;
  bool sorted_ = false;
  bool entryNumbersRewritten_ = false;  ///< column 0 shows numbers without leading zeros
  /// The numbers of which no part of the stored text is the rewritten one, by their rows: "-007" is "-7".
  std::vector<std::pair<RowId, std::string>> rewrittenNegatives_;

  [[nodiscard]] bool isFilledIn(RowId row, ColumnIndex column) const noexcept;
  [[nodiscard]] std::string_view rewrittenNumber(RowId row, std::string_view shown) const noexcept;
  [[nodiscard]] std::vector<std::pair<RowId, std::string>> rewriteNegatives(
      const std::vector<RowId>& rows, const std::vector<std::uint32_t>& keys) const;
  void sortAs(ColumnIndex key, SortOrder order);
};

/// Whether a store that was noted is the one that the list shows; not where it shows none.
[[nodiscard]] inline bool isStoreOf(const std::weak_ptr<const RowStore>& noted, const ResultList& list) noexcept {
  return list.store() != nullptr && noted.lock().get() == list.store();
}

/// `count`, a blank, and the text after it in the language: "125 Records on current tab".
[[nodiscard]] std::string recordCountText(std::size_t count, std::string_view label);

}  // namespace korvel::results
