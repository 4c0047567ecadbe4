#pragma once

#include <QString>
#include <memory>
#include <optional>
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
  /// The captions of all columns of the list that it was made for.
  std::vector<std::string> captions;
  bool isPending = false;    ///< it is being evaluated; until then no record matches
  bool isUndecided = false;  ///< values were too much for the regular expression, and count as not matching
};
/// Some of a list's records, which only that answer has. The condition's name is the key of the own text that says
/// which they are.
struct RecordFilter {
  results::RecordCondition condition;
};
/// One of the conditions that the user has put on a list. All of them are met by the rows that are shown.
using FilterCondition = std::variant<ColumnFilter, TextFilter, RecordFilter>;

/// The condition that some of these columns matches, with what is known of it. Nothing where the request is no regular
/// expression.
[[nodiscard]] std::optional<TextFilter> textFilter(const results::ResultList& list, const ui::FindRequest& request,
                                                   std::vector<results::ColumnIndex> columns,
                                                   std::shared_ptr<const results::MatchingRecords> known = {});
/// The same condition for other rows, of which nothing is known. Where they have other columns it is about all of
/// those. Regular expressions, which may take long, are pending.
[[nodiscard]] TextFilter forOtherRows(const TextFilter& filter, const results::ResultList& list);

/// What the engine filters by.
[[nodiscard]] results::RowFilter rowFilter(const std::vector<FilterCondition>& conditions);
/// Whether the list has the column, or the records, that the condition is about; a text is looked for in any columns.
[[nodiscard]] bool fitsList(const FilterCondition& condition, const results::ResultList& list);
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
/// The whole condition in English, as manifests have it: 'Event = "INSERT" or = "UPDATE"'.
[[nodiscard]] std::string filterText(const FilterCondition& condition);

}  // namespace korvel::control
