#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/output_formats.h"
#include "results/date_text.h"
#include "results/patterns/regex_matcher.h"
#include "results/result_list.h"
#include "results/row_filter.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

/// "COLUMN=VALUE" or "COLUMN!=VALUE".
struct WhereText {
  std::string column;
  bool excludes = false;
  std::string value;
};

/// "COLUMN", or "COLUMN:day" for a part of its dates.
struct CountText {
  std::string column;
  results::DatePart part = results::DatePart::whole;
};

/// Which rows of an answer a command takes, and whether it counts them instead of writing them.
struct RowChoice {
  std::string find;
  bool exactCase = false;
  bool regex = false;
  std::vector<WhereText> where;
  std::vector<CountText> countBy;

  /// All rows are taken.
  [[nodiscard]] bool takesAll() const noexcept { return find.empty() && where.empty(); }
};

/// Adds --find, --exact and --regex.
void addFind(CLI::App& command, RowChoice& choice);
/// Adds --where, which may be repeated.
void addWhere(CLI::App& command, RowChoice& choice);
/// Adds --find, --exact, --regex, --where and --count-by. Parsing fills `choice`, which must outlive the command.
void addRowChoice(CLI::App& command, RowChoice& choice);

/// Counts are written as csv where no --format is given; parsing changes `format`.
void addCountFormat(CLI::App& command, const RowChoice& choice, const OutputFormat*& format);

/// Why a choice cannot be made in a list with these columns; nothing where it can.
[[nodiscard]] std::optional<std::string> choiceProblem(const RowChoice& choice, const results::ResultList& list);

/// What the rows of a choice must be like; or why it cannot be said. Values of one column are alternatives, different
/// columns are all to be met; an empty value is null as well. `gaveUp` is set when a value turns out to be too much for
/// the regular expression.
[[nodiscard]] std::variant<results::RowFilter, std::string> filterOf(const RowChoice& choice,
                                                                     const results::ResultList& list,
                                                                     results::GaveUp gaveUp = {});

/// The records behind a list's rows, with all of their columns shown. Throws Error when memory runs out.
[[nodiscard]] results::ResultList wholeRecords(const results::ResultList& list);

/// Leaves in `list` the rows that pass, judged by all columns of the records, also those that the list shows empty.
/// Throws Error when memory runs out.
void keepPassingRows(results::ResultList& list, const results::RowFilter& filter);

/// The number of rows for each value of these columns, which the list has, as a list: a column each, and "Count" as the
/// last one. Throws Error when memory runs out.
[[nodiscard]] results::ResultList countedRows(const results::ResultList& list, const std::vector<CountText>& countBy);

/// The choice in words: 'find "TIC", Event = "UPDATE"'.
[[nodiscard]] std::string choiceText(const RowChoice& choice);

/// What a choice leaves of a list: says on `err` how many rows, where that is not all of them, and adds it with the
/// choice to the remark of the pages. Nothing where the list is what should be written; else the exit status with which
/// the command ends.
[[nodiscard]] std::optional<int> applyRowChoice(const RowChoice& choice, results::ResultList& list, std::string& remark,
                                                std::ostream& err);

}  // namespace korvel::cli
