#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "results/row_store.h"
#include "results/text_matcher.h"

namespace korvel::results {

class ResultList;

/// What a cell shows, where null and an empty text are two things.
struct ShownValue {
  std::string text;
  bool isNull = false;
  friend bool operator==(const ShownValue&, const ShownValue&) = default;
};

/// Texts that order, byte by byte, from `from` on and before `before`; an empty `before` is no bound. Dates as lists
/// show them order by time.
struct TextRange {
  std::string from;
  std::string before;
  friend bool operator==(const TextRange&, const TextRange&) = default;
};

/// A condition on the texts of one column. A text meets it if it is one of `values`, begins with one of `beginnings`
/// (the years, months or days of a column of dates) or lies in `range`; with `excludes`, if it does none of these.
struct ColumnCondition {
  ColumnIndex column{};
  bool excludes = false;
  std::vector<ShownValue> values{};
  std::vector<std::string> beginnings{};
  std::optional<TextRange> range{};
  friend bool operator==(const ColumnCondition&, const ColumnCondition&) = default;
};

/// A condition that some cell of these columns matches.
struct TextCondition {
  TextMatcher matcher;
  std::vector<ColumnIndex> columns;
};

/// What rows must be like to be shown: all conditions are met. Without conditions all rows pass.
struct RowFilter {
  std::vector<ColumnCondition> columns{};
  std::vector<TextCondition> texts{};
  [[nodiscard]] bool isEmpty() const noexcept { return columns.empty() && texts.empty(); }
};

/// For every record of the list's rows, shown or hidden, 1 if it meets all conditions
/// but those on `except`, else 0. Throws Error when memory runs out.
[[nodiscard]] std::vector<std::uint8_t> passingRecords(const ResultList& list, const RowFilter& filter,
                                                       std::optional<ColumnIndex> except = {});

}  // namespace korvel::results
