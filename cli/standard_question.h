#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "evidence/manifest.h"
#include "output/byte_sink.h"
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
  bool manifest = false;  ///< the output gets one
};

/// The node of the filter tree that a key (A, B, C, C1 .. D4), a parameter name (KorvelExplorer .. Restore) or a
/// caption that is only its own names, in any case of letters.
[[nodiscard]] std::optional<query::NodeIndex> categoryNamed(std::string_view key);
/// The column of an audit trail that a caption, a column name or a number counted from 1 names, in any case of letters.
[[nodiscard]] std::optional<results::ColumnIndex> columnNamed(std::string_view column);

// Options; parsing fills `question`, which must outlive the command.

/// Adds --from and --to; `range` must outlive the command.
void addDays(CLI::App& command, query::DateRange& range);
/// Adds --server, --database, --category, --from and --to.
void addQuestion(CLI::App& command, StandardQuestion& question);
void addComplete(CLI::App& command, StandardQuestion& question);
void addList(CLI::App& command, StandardQuestion& question);
void addQuiet(CLI::App& command, StandardQuestion& question);

/// Why a range is none; nothing where it is one.
[[nodiscard]] std::optional<std::string> daysProblem(const query::DateRange& range);
/// Why the question cannot be asked; nothing where it can.
[[nodiscard]] std::optional<std::string> questionProblem(const StandardQuestion& question);

/// What came of a query: the exit status, and what is said of the rows in the list that was asked for.
struct Answered {
  int status = 0;
  std::string remark{};
  std::string pageRemark{};       ///< the same without whether rows are missing, which the head of pages says
  bool hasRows = false;           ///< the list has rows to write
  evidence::Manifest manifest{};  ///< what the question and its answer tell of
  /// All that a manifest tells before the output is written.
  std::function<evidence::Manifest()> described{};
};

/// Writes what a command makes of the list that was asked for and of its answer; gives the exit status instead where
/// there is nothing to write, having said why.
using AnswerWriter =
    std::function<std::optional<int>(results::ResultList& list, Answered& answer, const output::ByteSink& sink)>;

/// Asks, and writes the answer to `target` until Ctrl+C is pressed, whole or not at all; gives the exit status.
[[nodiscard]] int writeAnswer(const StandardQuestion& question, const query::Connector& connect,
                              const std::string& target, std::ostream& out, std::ostream& err,
                              const AnswerWriter& write);

/// Adds a sentence to what is said of rows.
void addSentence(std::string& remark, std::string_view sentence);

/// "48,213".
[[nodiscard]] std::string groupedNumber(std::uint64_t number);

}  // namespace korvel::cli
