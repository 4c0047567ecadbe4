#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "query/date_slices.h"
#include "query/standard_query.h"
#include "settings/string_table.h"

namespace korvel::query {

/// A part of an answer that could not be finished.
struct IncompletePart {
  enum class Kind {
    minute,      ///< more rows of one minute than the procedure returns
    ofAllDates,  ///< more rows than the procedure returns come whatever the time: alarm rows of the vel_Alg tables
    undated      ///< rows without a date, which no range finds
  };

  Kind kind = Kind::minute;
  Minute minute{};
  /// The category by its place, counted from 0; nothing for the whole trail.
  std::optional<std::size_t> category;
  /// Why the table could not be read instead.
  Error reason;
};

/// How the completing of an answer came out.
struct CompletionReport {
  QueryOutcome outcome = QueryOutcome::failed;
  /// Why it failed.
  std::optional<Error> failure;
  /// Answers that the rows are joined from.
  std::size_t slices = 0;
  /// Calls and selects that the server answered, those included whose answers were cut.
  std::size_t calls = 0;
  std::vector<IncompletePart> incomplete;
  /// Entry numbers that came with different values: the first ones, and how many there are. All of their rows are kept.
  std::vector<std::string> changedEntries;
  std::size_t changedEntryCount = 0;
  /// It was stopped, and what had come by then was kept.
  bool endedEarly = false;

  [[nodiscard]] bool isComplete() const noexcept {
    return outcome == QueryOutcome::filled && incomplete.empty() && !endedEarly;
  }
};

/// What is said of a completed answer: whether it is complete, of how many records and slices, and then, a text each,
/// what is missing and what changed meanwhile. `count` writes a number of records or slices.
[[nodiscard]] std::vector<std::string> completionTexts(const CompletionReport& report, std::size_t records,
                                                       const settings::LanguageOffset& language,
                                                       const std::function<std::string(std::size_t)>& count);

struct CompletionProgress {
  std::size_t rows = 0;
  std::size_t slices = 0;
};
/// Called again and again on the thread that waits. False stops the query.
using CompletionCallback = std::function<bool(const CompletionProgress&)>;

/// Everything that the standard query would find without the procedure's limit; in no list yet.
class CompleteAnswer {
 public:
  CompleteAnswer();
  CompleteAnswer(CompleteAnswer&&) noexcept;
  CompleteAnswer& operator=(CompleteAnswer&&) noexcept;
  ~CompleteAnswer();

  /// After a stop, the rows that had come by then are still there: fill() then puts them into the lists, and the report
  /// says that it ended early.
  [[nodiscard]] const CompletionReport& report() const noexcept { return report_; }
  [[nodiscard]] std::size_t rowCount() const noexcept;

  /// Replaces the rows of lists 0..4, spread by audit type, and sorts list `currentList` with its key and order. Where
  /// there are no rows, or memory runs out, the lists stay as they were. Called once. Nothing that is thrown below
  /// leaves it.
  const CompletionReport& fill(ResultLists& lists, std::size_t currentList);

 private:
  friend CompleteAnswer completeStandardQuery(const StandardQueryRequest&, const Connector&, const CompletionCallback&,
                                              const QueryEnvironment&, std::size_t);
  class Collected;

  CompletionReport report_;
  std::shared_ptr<Collected> collected_;
};

/// Asks the standard question and finishes what the procedure's limit cuts: the same call runs over slices of the date
/// range, each small enough, and the answers are joined. A minute that is still cut is selected from the table, where
/// the login may read it. Runs on a thread of its own; `onWait` is called meanwhile. A slice whose connection
/// breaks is asked for once more, on another connection. Nothing that is thrown below leaves it. `rowLimit` is the
/// procedure's; tests take a smaller one.
[[nodiscard]] CompleteAnswer completeStandardQuery(const StandardQueryRequest& question, const Connector& connect,
                                                   const CompletionCallback& onWait = {},
                                                   const QueryEnvironment& environment = {},
                                                   std::size_t rowLimit = db::rowLimitPerResult);

}  // namespace korvel::query
