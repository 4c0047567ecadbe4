#pragma once

#include <cstddef>
#include <functional>
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

}  // namespace korvel::query
