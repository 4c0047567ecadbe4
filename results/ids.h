#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

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

}  // namespace korvel::results
