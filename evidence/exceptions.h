#pragma once

#include <array>
#include <bitset>
#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "results/result_list.h"

namespace korvel::evidence {

/// What a reviewer looks for in a trail.
enum class ExceptionRule : std::size_t {
  withoutComment,  ///< a value was changed and nobody said why
  deletion,        ///< something was deleted
  outsideHours,    ///< outside the working hours
  twoComputers,    ///< the same user on another computer within a minute
  discontinued,    ///< the old value is not the new one of the item's record before
  numbersMissing,  ///< entry numbers are missing before the record
  numberRepeated,  ///< another record has the same entry number
  clockStep,       ///< the time lies before that of the record before
  repeatedHour,    ///< in the hour that the clock shows twice when summer time ends
  unusualChange    ///< more than five times as far as the item's values usually change
};
inline constexpr std::size_t exceptionRuleCount = 10;

struct ExceptionRuleInfo {
  ExceptionRule rule;
  std::string_view name;     ///< by which a command names it
  std::string_view textKey;  ///< of what a user reads
};
/// All rules, in the order in which they are shown.
[[nodiscard]] const std::array<ExceptionRuleInfo, exceptionRuleCount>& exceptionRules() noexcept;

/// The hours in which work is done, on the plant's wall clock.
struct WorkingHours {
  std::chrono::minutes from{std::chrono::hours{6}};
  std::chrono::minutes to{std::chrono::hours{18}};  ///< the first minute after them; before `from`: of the next day
  /// Monday is 0. Hours that end on the next day belong to the day on which they begin.
  std::bitset<7> days{0b0011111};
};

struct ExceptionSettings {
  WorkingHours hours{};
  /// The list holds every entry of the trail between its first and its last number. Only then do missing numbers say
  /// something.
  bool hasAllNumbers = false;
};

/// What was found in a list. A record that stands in it more than once, for several categories, is looked at once.
struct FoundExceptions {
  /// The records of each rule, in the order of their entry numbers.
  std::array<std::vector<results::RowId>, exceptionRuleCount> records;
  bool numbersWereJudged = false;
  std::size_t lookedAt = 0;  ///< records

  [[nodiscard]] const std::vector<results::RowId>& of(ExceptionRule rule) const {
    return records.at(static_cast<std::size_t>(rule));
  }
};

/// Looks for exceptions among the rows that a list of audit records shows, judged by all columns of the records. Rows
/// without an entry number are left out. Nothing where a column of the trail is missing, as in the answer to another
/// query. Throws Error when memory runs out.
[[nodiscard]] std::optional<FoundExceptions> findExceptions(const results::ResultList& list,
                                                            const ExceptionSettings& settings);

}  // namespace korvel::evidence
