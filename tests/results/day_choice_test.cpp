#include "results/day_choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "results/column_values.h"
#include "tests/results/stored_rows.h"

namespace korvel::results {
namespace {

constexpr ColumnIndex column{0};

std::vector<std::string> times() {
  std::vector<std::string> all;
  for (const std::string day : {"2004-03-07", "2004-03-08", "2004-04-01", "2005-01-02"})
    for (const std::string time : {" 03:10:44.310", " 03:59:00.000", " 04:00:00.000", " 17:30:00.000"})
      all.push_back(day + time);
  all.emplace_back("2005-01-03");
  return all;
}

ResultList listOfTimes() {
  std::vector<test::Row> rows;
  for (const std::string& time : times()) rows.push_back({time});
  rows.push_back({""});
  rows.push_back({test::null});
  ResultList list(RowFilling::whole);
  list.setColumns({{"Date Time", standardColumnWidth, 0}});
  std::vector<RowId> ids;
  for (std::uint32_t row = 0; row < rows.size(); ++row) ids.push_back({row});
  list.setRows(test::storeOf(rows), ids);
  return list;
}

ShownValue cellOf(const ResultList& list, RowId row) {
  const bool isNull = list.store()->cell(row, column).isNull;
  return {std::string(list.textOf(row, column)), isNull};
}
ShownValue dayOf(const ShownValue& cell) {
  return {cell.text.substr(0, 10), cell.isNull};
}

std::set<std::uint32_t> shownRows(const ResultList& list) {
  std::set<std::uint32_t> rows;
  for (std::size_t row = 0; row < list.rowCount(); ++row) rows.insert(list.rowId({row}).value);
  return rows;
}

/// What a user can have put on a column of dates: single times, hours, days, months, and lists of days.
ColumnCondition generatedCondition(std::mt19937& random, const ResultList& list, bool excludes) {
  ColumnCondition condition{.column = column, .excludes = excludes};
  const auto cell = [&] { return cellOf(list, list.wholeRows()[random() % list.wholeRowCount()]); };
  switch (random() % (excludes ? 2 : 5)) {
    case 0:
      condition.values.push_back(cell());
      break;
    case 1:
      for (int i = 0; i < 3; ++i) {
        const ShownValue day = dayOf(cell());
        if (day.text.empty())
          condition.values.push_back(day);
        else
          condition.beginnings.push_back(day.text);
      }
      break;
    case 2:
      condition.beginnings.push_back("2004-03-07 03");
      if (random() % 2 == 0) condition.beginnings.push_back("2004-04-01 17");
      break;
    case 3:
      condition.beginnings.push_back(random() % 2 == 0 ? "2004-03" : "2004");
      break;
    default:
      condition.range = TextRange{"2004-03-07 03:30", "2004-04-01 04"};
  }
  return condition;
}

TEST(DayChoice, AgreesWithLookingAtEveryRow) {
  std::mt19937 random(7);
  ResultList list = listOfTimes();
  int partly = 0;
  for (int round = 0; round < 3000; ++round) {
    DayChoice choice{.whole = {}, .partly = {}, .none = {}, .othersToo = random() % 2 == 0};
    std::vector<ColumnCondition> before;
    for (auto count = 1 + random() % 3; count > 0; --count)
      before.push_back(generatedCondition(random, list, choice.othersToo || random() % 3 == 0));
    list.setFilter({before, {}});
    const std::set<std::uint32_t> shown = shownRows(list);
    std::vector<ShownValue> listed;
    for (const ValueCount& each : columnValues(list, column).values) {
      // Some days are not listed: others are searched for.
      if (random() % 6 == 0) continue;
      listed.push_back(each.value);
      const auto isShown = [&](RowId row) { return shown.count(row.value) != 0; };
      const auto isOfDay = [&](RowId row) { return dayOf(cellOf(list, row)) == each.value; };
      std::size_t rowsOfDay = 0;
      std::size_t shownOfDay = 0;
      for (const RowId row : list.wholeRows()) {
        if (!isOfDay(row)) continue;
        ++rowsOfDay;
        shownOfDay += isShown(row) ? 1U : 0U;
      }
      const bool isPartly = shownOfDay != 0 && shownOfDay != rowsOfDay;
      if (isPartly && random() % 2 == 0) {
        choice.partly.push_back(each.value);
        ++partly;
      } else if (random() % 2 == 0) {
        choice.whole.push_back(each.value);
      } else {
        choice.none.push_back(each.value);
      }
    }
    if (choice.whole.empty() && choice.partly.empty()) continue;
    const auto has = [](const std::vector<ShownValue>& days, const ShownValue& day) {
      return std::find(days.begin(), days.end(), day) != days.end();
    };
    std::set<std::uint32_t> expected;
    for (const RowId row : list.wholeRows()) {
      const ShownValue day = dayOf(cellOf(list, row));
      const bool wasShown = shown.count(row.value) != 0;
      const bool stays = has(choice.partly, day) || (choice.othersToo && !has(listed, day));
      if (has(choice.whole, day) || (stays && wasShown)) expected.insert(row.value);
    }
    list.setFilter({chosenDays(before, column, choice), {}});
    ASSERT_EQ(shownRows(list), expected) << round;
  }
  EXPECT_GT(partly, 300);
}

TEST(DayChoice, AddsNothingThatIsSaidAlready) {
  const ColumnCondition hour{.column = column, .beginnings = {"2004-03-07 03"}};
  const std::vector<ColumnCondition> same =
      chosenDays({hour}, column, {.whole = {}, .partly = {{"2004-03-07", false}}, .none = {{"2004-03-08", false}}});
  EXPECT_EQ(same, std::vector<ColumnCondition>{hour});
  const ColumnCondition without{.column = column, .excludes = true, .values = {{"2004-03-07 03:10:44.310", false}}};
  const std::vector<ColumnCondition> both =
      chosenDays({without}, column,
                 {.whole = {}, .partly = {{"2004-03-07", false}}, .none = {{"2004-03-08", false}}, .othersToo = true});
  ASSERT_EQ(both.size(), 1U);
  EXPECT_EQ(both[0].values, without.values);
  EXPECT_EQ(both[0].beginnings, std::vector<std::string>{"2004-03-08"});
}

}  // namespace
}  // namespace korvel::results
