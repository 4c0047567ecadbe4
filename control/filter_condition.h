#pragma once

#include <QString>
#include <string>
#include <variant>
#include <vector>

#include "results/result_list.h"
#include "results/row_filter.h"
#include "ui/chip_bar.h"
#include "ui/find_bar.h"

namespace korvel::control {

/// A condition on a column, with the caption that the column had: another answer may have other columns.
struct ColumnFilter {
  results::ColumnCondition condition;
  std::string caption;
};
/// A text that some column must show, as a find bar asks for it.
struct TextFilter {
  results::TextCondition condition;
  ui::FindRequest request;
};
/// One of the conditions that the user has put on a list. All of them are met by the rows that are shown.
using FilterCondition = std::variant<ColumnFilter, TextFilter>;

/// What the engine filters by.
[[nodiscard]] results::RowFilter rowFilter(const std::vector<FilterCondition>& conditions);
/// Whether the list has the columns that the condition is about.
[[nodiscard]] bool fitsColumns(const FilterCondition& condition, const results::ResultList& list);
/// Whether all conditions on a column let this value pass.
[[nodiscard]] bool passes(const std::vector<FilterCondition>& conditions, results::ColumnIndex column,
                          const results::ShownValue& value);
/// The conditions on `column` as a single value leaves them: that value alone, or all but it.
void keepOnly(std::vector<FilterCondition>& conditions, const results::ColumnIndex& column, const std::string& caption,
              results::ShownValue value);
void leaveOut(std::vector<FilterCondition>& conditions, const results::ColumnIndex& column, const std::string& caption,
              results::ShownValue value);

/// A value as chips and lists of values name it: null and an empty text have names.
[[nodiscard]] QString valueName(const results::ShownValue& value);
/// The condition in words of the current language.
[[nodiscard]] ui::Chip chipOf(const FilterCondition& condition);

}  // namespace korvel::control
