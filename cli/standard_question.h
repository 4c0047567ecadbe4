#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "query/standard_query.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

/// What a command asks the standard query, and which of its lists it takes.
struct StandardQuestion {
  std::string server;
  std::string database;
  std::vector<query::NodeIndex> categories;  ///< empty: all
  query::DateRange range;
  std::size_t list = 0;
  bool quiet = false;     ///< no row counts
  bool complete = false;  ///< beyond the procedure's limit
};

/// The node of the filter tree that a key (A, B, C, C1 .. D4), a parameter name (KorvelExplorer .. Restore) or a
/// caption that is only its own names, in any case of letters.
[[nodiscard]] std::optional<query::NodeIndex> categoryNamed(std::string_view key);
/// The column of an audit trail that a caption, a column name or a number counted from 1 names, in any case of letters.
[[nodiscard]] std::optional<results::ColumnIndex> columnNamed(std::string_view column);

// Options; parsing fills `question`, which must outlive the command.

/// Adds --server, --database, --category, --from and --to.
void addQuestion(CLI::App& command, StandardQuestion& question);
void addComplete(CLI::App& command, StandardQuestion& question);
void addList(CLI::App& command, StandardQuestion& question);
void addQuiet(CLI::App& command, StandardQuestion& question);

/// Why the question cannot be asked; nothing where it can.
[[nodiscard]] std::optional<std::string> questionProblem(const StandardQuestion& question);

/// What came of a query: the exit status, and what is said of the rows in the list that was asked for.
struct Answered {
  int status = 0;
  std::string remark{};
  bool hasRows = false;  ///< the list has rows to write
};

/// Asks, fills the lists, and says on `err` how it came out.
[[nodiscard]] Answered askQuestion(const StandardQuestion& question, const query::Connector& connect,
                                   query::ResultLists& lists, std::ostream& err);

/// The status of a command that writes nothing for that reason: where rows are missing, "no records" is not said.
[[nodiscard]] int endedBecause(int status, int statusOfAnswer) noexcept;

/// "48,213".
[[nodiscard]] std::string groupedNumber(std::size_t number);

}  // namespace korvel::cli
