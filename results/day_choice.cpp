#include "results/day_choice.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace korvel::results {

namespace {

/// Whether a value or a beginning is one of these days, or a time in one of them.
bool liesIn(const std::vector<ShownValue>& days, std::string_view text, bool isNull) {
  return std::any_of(days.begin(), days.end(), [&](const ShownValue& day) {
    if (isNull || day.isNull || day.text.empty()) return isNull == day.isNull && text == day.text;
    return text.starts_with(day.text);
  });
}

/// Whether a beginning is a month or a year with one of these days.
bool contains(std::string_view beginning, const std::vector<ShownValue>& days) {
  return std::any_of(days.begin(), days.end(), [&](const ShownValue& day) {
    return day.text.size() > beginning.size() && day.text.starts_with(beginning);
  });
}

void add(ColumnCondition& condition, const std::vector<ShownValue>& days) {
  for (const ShownValue& day : days) {
    if (day.text.empty())
      condition.values.push_back(day);
    else
      condition.beginnings.push_back(day.text);
  }
}

bool isEmpty(const ColumnCondition& condition) {
  return condition.values.empty() && condition.beginnings.empty() && !condition.range;
}

}  // namespace

std::vector<ColumnCondition> chosenDays(const std::vector<ColumnCondition>& before, ColumnIndex column,
                                        const DayChoice& choice) {
  std::vector<ColumnCondition> conditions;
  ColumnCondition excluded{.column = column, .excludes = true};
  bool saysDays = choice.othersToo;  // some condition is met by nothing but what was chosen
  for (ColumnCondition condition : before) {
    if (condition.excludes) {
      // What is left out of days that are shown whole is shown again.
      std::erase_if(condition.values,
                    [&](const ShownValue& each) { return liesIn(choice.whole, each.text, each.isNull); });
      std::erase_if(condition.beginnings, [&](const std::string& each) { return liesIn(choice.whole, each, false); });
      std::move(condition.values.begin(), condition.values.end(), std::back_inserter(excluded.values));
      std::move(condition.beginnings.begin(), condition.beginnings.end(), std::back_inserter(excluded.beginnings));
      if (condition.range) conditions.push_back({.column = column, .excludes = true, .range = condition.range});
      continue;
    }
    // Times stay in the days that are shown partly, months and years for these days' sake.
    std::erase_if(condition.values,
                  [&](const ShownValue& each) { return !liesIn(choice.partly, each.text, each.isNull); });
    std::erase_if(condition.beginnings, [&](const std::string& each) {
      return !liesIn(choice.partly, each, false) && !contains(each, choice.partly);
    });
    const bool isWider =
        condition.range || std::any_of(condition.beginnings.begin(), condition.beginnings.end(),
                                       [&](const std::string& each) { return contains(each, choice.partly); });
    saysDays = saysDays || !isWider;
    add(condition, choice.whole);
    conditions.push_back(std::move(condition));
  }
  if (choice.othersToo) add(excluded, choice.none);
  if (!saysDays) {
    ColumnCondition days{.column = column};
    add(days, choice.whole);
    add(days, choice.partly);
    conditions.push_back(std::move(days));
  }
  if (!isEmpty(excluded)) conditions.push_back(std::move(excluded));
  return conditions;
}

}  // namespace korvel::results
