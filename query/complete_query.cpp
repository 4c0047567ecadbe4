#include "query/complete_query.h"

#include <array>
#include <utility>
#include <vector>

#include "query/completion.h"
#include "query/query_failure.h"

namespace korvel::query {

CompleteAnswer::CompleteAnswer() = default;
CompleteAnswer::CompleteAnswer(CompleteAnswer&&) noexcept = default;
CompleteAnswer& CompleteAnswer::operator=(CompleteAnswer&&) noexcept = default;
CompleteAnswer::~CompleteAnswer() = default;

std::size_t CompleteAnswer::rowCount() const noexcept {
  return joined_ ? joined_->join().rowCount() : 0;
}

const CompletionReport& CompleteAnswer::fill(ResultLists& lists, std::size_t currentList) {
  if (!joined_ || rowCount() == 0) return report_;
  const auto unfilled = failureOf([&] {
    const std::shared_ptr<const results::RowStore> store = joined_->join().store();
    std::array<std::vector<results::RowId>, standardListCount> rows;
    for (std::size_t i = 0; i < standardListCount; ++i) rows.at(i) = joined_->join().takeList(i);
    // Sorting needs the memory that recognised rows when they came again.
    joined_.reset();
    ResultLists filled = lists;
    for (std::size_t i = 0; i < standardListCount; ++i) filled[i].setRows(store, std::move(rows.at(i)));
    if (currentList < filled.size() && !filled[currentList].isSorted()) filled[currentList].sort();
    for (std::size_t i = 0; i < standardListCount; ++i) lists[i] = std::move(filled[i]);
  });
  joined_.reset();
  report_.endedEarly = report_.outcome == QueryOutcome::stopped;
  report_.outcome = unfilled ? QueryOutcome::failed : QueryOutcome::filled;
  report_.failure = unfilled;
  return report_;
}

CompleteAnswer completeStandardQuery(const StandardQueryRequest& question, const Connector& connect,
                                     const CompletionCallback& onWait, const QueryEnvironment& environment,
                                     std::size_t rowLimit) {
  CompleteAnswer answer;
  if (!question.tree.anyRootChecked()) {
    answer.report_.outcome = QueryOutcome::noCriteria;
    return answer;
  }
  const auto broken = failureOf([&] {
    const auto joined = std::make_shared<SharedJoin>(environment.memory);
    const CompletionOrder order{question.tree.flags(), question.range, std::string(question.connectionString), connect,
                                environment.memory,    rowLimit};
    const auto work = [order, joined](const std::stop_token& stop) -> std::optional<Error> {
      return failureOf([&] {
        try {
          runCompletion(order, *joined, stop);
        } catch (const Stopped&) {  // NOLINT(bugprone-empty-catch): whoever asked for the stop knows
        }
      });
    };
    bool stopped = false;
    db::WaitCallback noted;
    if (onWait)
      noted = [&] {
        stopped = !onWait(joined->progress());
        return !stopped;
      };
    const auto failure = db::runOnWorker(work, noted, environment.pace);
    answer.report_ = joined->take();
    answer.joined_ = joined;
    if (stopped || !failure)
      answer.report_.outcome = QueryOutcome::stopped;
    else if (*failure)
      answer.report_.failure = **failure;
    else
      answer.report_.outcome = joined->join().rowCount() > 0 ? QueryOutcome::filled : QueryOutcome::noRecords;
  });
  if (!broken && answer.report_.outcome != QueryOutcome::failed) return answer;
  answer.joined_.reset();
  if (broken) answer.report_.failure = broken;
  answer.report_.outcome = QueryOutcome::failed;
  return answer;
}

}  // namespace korvel::query
