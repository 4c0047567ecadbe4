#pragma once

#include <QString>
#include <string>

namespace korvel::control {

/// How the query ended that a list shows the answer of. An empty list says it.
enum class AnswerState { notQueried, querying, filled, nothingFound, stopped, failed };

/// What is known of the answer that the lists of a page show.
struct ShownAnswer {
  AnswerState state = AnswerState::notQueried;
  /// Why it failed, in the words of that time.
  QString failure = {};
  /// What was asked, and where: the list is out of date once something else would be. The text is that of the standard
  /// query's call, and empty for custom queries.
  std::string question = {};
  std::string connectionString = {};
  /// Alarm rows of other dates than the range's are among the rows, or may be.
  bool alarmsOfAllDates = false;
  /// A result set came with as many rows as the procedure returns at most.
  bool rowLimitReached = false;

  /// Whether the lists show what was asked, be it nothing.
  [[nodiscard]] bool isAnswer() const noexcept {
    return state == AnswerState::filled || state == AnswerState::nothingFound;
  }
};

}  // namespace korvel::control
