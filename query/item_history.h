#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "results/result_list.h"
#include "results/row_filter.h"

namespace korvel::query {

/// Which columns of a list say what was changed, when, and from what to what.
struct ItemColumns {
  /// Project, database, area, item and item id: rows that agree in them are about the same thing.
  std::array<results::ColumnIndex, 5> identity{};
  results::ColumnIndex entryNumber;
  results::ColumnIndex time;
  results::ColumnIndex oldValue;
  results::ColumnIndex newValue;
};

/// The columns of an audit trail, found by their captions or their names in the table; nothing where one is missing, as
/// in the answer to another query.
[[nodiscard]] std::optional<ItemColumns> itemColumns(const results::ResultList& list);

/// A number with what follows it: "9.14 bar".
struct Quantity {
  double number = 0;
  std::string_view unit;
};
/// Nothing where the text does not begin with a number. The decimal separator is a point or, where there is one only
/// and no point, a comma.
[[nodiscard]] std::optional<Quantity> quantityOf(std::string_view text) noexcept;

/// One record about an item; one that is several rows of the list is a change once. The texts live as long as the
/// list's rows.
struct ItemChange {
  results::RowId record;
  std::string_view time;
  std::string_view oldValue;
  std::string_view newValue;
  /// Whether the old value is the new one of the change before; true for the first change. If not, something has
  /// happened that the list does not show. Said of an item only: see ItemHistory::namesItem().
  bool continues = true;
};

/// What the list shows of one item, in the order of time.
struct ItemHistory {
  std::array<std::string_view, 5> identity{};
  std::vector<ItemChange> changes{};
  /// Every value that is not empty is a number of this unit, and there is one.
  bool isNumeric = false;
  std::string_view unit{};

  /// Whether the records have an item id. Those without one may be about several things, whose values do not continue
  /// each other and are in no plot.
  [[nodiscard]] bool namesItem() const noexcept { return !identity.back().empty(); }
};

/// The history of the item that a record is about, in all rows of the list, those that a filter hides included. Throws
/// Error when memory runs out.
[[nodiscard]] ItemHistory itemHistory(const results::ResultList& list, const ItemColumns& columns,
                                      results::RowId record);
/// The histories of all items that have a row which meets the conditions; a history has all rows of its item that do.
/// Ordered by project, database, area, item and item id. Throws Error when memory runs out.
[[nodiscard]] std::vector<ItemHistory> itemHistories(const results::ResultList& list, const ItemColumns& columns,
                                                     const results::RowFilter& conditions);

}  // namespace korvel::query
