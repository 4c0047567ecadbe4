#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "query/completion_report.h"
#include "query/shared_join.h"
#include "query/standard_query.h"

namespace korvel::query {

/// Called periodically on the thread that waits. False stops the query.
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

  CompletionReport report_;
  std::shared_ptr<SharedJoin> joined_;
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
