#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "db/connection.h"

namespace korvel::results {

/// A row of a RowStore, counted from 0 in the order of arrival.
struct RowId {
  std::uint32_t value = 0;
  friend constexpr auto operator<=>(RowId, RowId) = default;
};

/// A column of a record or of a list, counted from 0.
struct ColumnIndex {
  std::size_t value = 0;
  friend constexpr auto operator<=>(ColumnIndex, ColumnIndex) = default;
};

/// A place in a list as it is shown, counted from 0 from the top.
struct RowPosition {
  std::size_t value = 0;
  friend constexpr auto operator<=>(RowPosition, RowPosition) = default;
};

class Column;

/// Rows [first, end) of one result set, which has `width` columns.
struct ResultRows {
  std::size_t first = 0;
  std::size_t end = 0;
  std::size_t width = 0;
};

/// The rows of one answer, each stored once, column by column: a column keeps every distinct value once and a code of
/// 1, 2 or 4 bytes a row; a column whose values hardly repeat stops looking for repeats. Values are kept exactly as the
/// server gave them, null apart from empty. Append-only; shared read-only by the lists once filled.
class RowStore final {
 public:
  RowStore();
  ~RowStore();
  RowStore(RowStore&&) noexcept;
  RowStore& operator=(RowStore&&) noexcept;

  /// Starts a result set of these fields; rows appended from here on have that many cells.
  void beginResult(std::span<const db::Field> fields);
  /// Cells beyond the result set's fields are dropped, missing ones are null. Throws Error when more than 2^32 - 1
  /// rows, or more memory than there is, would be needed; the store then holds what it held before.
  RowId append(std::span<const db::Cell> cells);

  [[nodiscard]] std::size_t rowCount() const noexcept;
  /// The widest result set's number of columns.
  [[nodiscard]] std::size_t columnCount() const noexcept;
  /// The narrowest result set's number of columns.
  [[nodiscard]] std::size_t leastColumnCount() const noexcept;
  /// Number of fields of the result set that the row came with.
  [[nodiscard]] std::size_t widthOf(RowId row) const noexcept;
  /// The fields of the result set that the row came with.
  [[nodiscard]] std::span<const db::Field> fieldsOf(RowId row) const noexcept;
  /// The value; an empty null cell beyond the row's width. The text lives as long as the store.
  [[nodiscard]] db::Cell cell(RowId row, ColumnIndex column) const noexcept;

  /// Whether two rows have the same values in all columns: one record that the answer holds twice.
  [[nodiscard]] bool isSameRecord(RowId left, RowId right) const noexcept;

  /// The stored values of a column; null beyond the widest result set. For going through all rows of a column at once.
  [[nodiscard]] const Column* column(ColumnIndex column) const noexcept;
  /// The result sets that have rows, in the order of arrival.
  [[nodiscard]] std::vector<ResultRows> results() const;

  /// The rank of every row by the column's text as lists show it (blanks trimmed): case-insensitive, equal texts have
  /// equal ranks, null ranks as empty; with `numericKeys`, numbers of up to nine digits rank by their value padded to
  /// nine digits. Rank 0 is the empty text's, whether or not it occurs; the others follow without gaps.
  [[nodiscard]] std::vector<std::uint32_t> ranks(ColumnIndex column, bool numericKeys) const;

  /// Calls `visit` with the texts of a column, exactly as the server gave them: each at least once, and hardly more
  /// often where they repeat. Nulls are passed over. For measuring columns without walking through every row.
  void visitDistinct(ColumnIndex column, const std::function<void(std::string_view)>& visit) const;
  /// The same for the texts of some rows. Throws Error when memory runs out.
  void visitDistinct(ColumnIndex column, std::span<const RowId> rows,
                     const std::function<void(std::string_view)>& visit) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace korvel::results
