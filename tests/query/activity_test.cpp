#include "query/activity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "query/audit_record.h"
#include "tests/results/generated_list.h"
#include "tests/results/stored_rows.h"

namespace korvel::query {
namespace {

using results::ColumnIndex;
using results::ResultList;
using results::RowFilling;
using results::test::GeneratedList;
using results::test::null;
using results::test::Row;
using results::test::Value;

constexpr ColumnIndex timeColumn{0};
constexpr ColumnIndex kindColumn{1};

/// A list of two columns: a time, and what happened.
ResultList listOf(const std::vector<Row>& rows) {
  ResultList list(RowFilling::whole);
  list.setColumns({{"DateTime", results::standardColumnWidth, 0}, {"Event", results::standardColumnWidth, 0}});
  std::vector<results::RowId> ids;
  for (std::uint32_t row = 0; row < rows.size(); ++row) ids.push_back({row});
  list.setRows(results::test::storeOf(rows), ids);
  return list;
}

/// The beginning of a bar, by the C library: "2004-03-07 03".
std::string beginText(ActivityHour begin) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(begin);
  std::string text(32, ' ');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H", std::gmtime(&seconds)));
  return text;
}

std::string told(const Activity& activity) {
  std::string text;
  for (const ActivityBar& bar : activity.bars) {
    text.append(beginText(bar.begin)).append(":");
    for (const std::size_t count : bar.counts) text.append(" ").append(std::to_string(count));
    text.append("\n");
  }
  return text;
}

TEST(Activity, HasABarForEveryPeriodFromTheFirstToTheLast) {
  const ResultList list = listOf({{"2004-02-28 23:59:59.999", "UPDATE"},
                                  {"2004-03-01 00:00:00.000", "INSERT"},
                                  {"2004-02-28 22:00:00.000", "UPDATE"},
                                  {"2004-03-01", "UPDATE"}});
  const Activity byDay = activityOf(list, timeColumn, kindColumn, ActivityStep::day);
  EXPECT_EQ(told(byDay), "2004-02-28 00: 2 0\n2004-02-29 00: 0 0\n2004-03-01 00: 1 1\n");
  ASSERT_EQ(byDay.kinds.size(), 2U);
  EXPECT_EQ(byDay.kinds[0].text, "UPDATE");
  EXPECT_FALSE(byDay.hasOthers);
  EXPECT_EQ(told(activityOf(list, timeColumn, kindColumn, ActivityStep::month)),
            "2004-02-01 00: 2 0\n2004-03-01 00: 1 1\n");
  // The 23rd of February and the first of March 2004 were Mondays.
  EXPECT_EQ(told(activityOf(list, timeColumn, kindColumn, ActivityStep::week)),
            "2004-02-23 00: 2 0\n2004-03-01 00: 1 1\n");
  const Activity byHour = activityOf(list, timeColumn, kindColumn, ActivityStep::hour);
  ASSERT_EQ(byHour.bars.size(), 27U);
  EXPECT_EQ(beginText(byHour.bars.front().begin), "2004-02-28 22");
  EXPECT_EQ(byHour.bars[1].counts, (std::vector<std::size_t>{1, 0}));
  EXPECT_EQ(beginText(byHour.bars.back().begin), "2004-03-01 00");
  EXPECT_EQ(byHour.bars.back().counts, (std::vector<std::size_t>{1, 1}));
}

TEST(Activity, RowsWithoutADateOfTheCalendarAreCountedApart) {
  const ResultList list = listOf({{"2004-02-31 10:00:00", "UPDATE"},
                                  {"", "UPDATE"},
                                  {null, "UPDATE"},
                                  {"yesterday", "UPDATE"},
                                  {"2004-02-29T10:00:00", "UPDATE"},
                                  {"2004-02-29 at ten", "UPDATE"}});
  for (const ActivityStep step : {ActivityStep::hour, ActivityStep::day, ActivityStep::week, ActivityStep::month})
    EXPECT_EQ(activityOf(list, timeColumn, kindColumn, step).undated, 4U);
  const Activity byHour = activityOf(list, timeColumn, kindColumn, ActivityStep::hour);
  EXPECT_EQ(byHour.bars.size(), 11U);
  EXPECT_EQ(byHour.bars.front().total(), 1U);
  EXPECT_EQ(byHour.bars.back().total(), 1U);
  EXPECT_TRUE(activityOf(listOf({{"never", "UPDATE"}}), timeColumn, kindColumn, ActivityStep::day).bars.empty());
  EXPECT_TRUE(activityOf(listOf({}), timeColumn, kindColumn, ActivityStep::day).bars.empty());
}

TEST(Activity, RareKindsAreCountedTogether) {
  std::vector<Row> rows;
  for (int kind = 0; kind < 9; ++kind)
    for (int i = kind; i < 9; ++i) rows.push_back({"2004-02-29", "kind " + std::to_string(kind)});
  const Activity activity = activityOf(listOf(rows), timeColumn, kindColumn, ActivityStep::day);
  ASSERT_EQ(activity.kinds.size(), mostActivityKinds);
  EXPECT_EQ(activity.kinds.back().text, "kind 6");
  EXPECT_TRUE(activity.hasOthers);
  EXPECT_EQ(told(activity), "2004-02-29 00: 9 8 7 6 5 4 3 3\n");
  // One kind alone is not "others".
  EXPECT_EQ(told(activityOf(listOf(rows), timeColumn, kindColumn, ActivityStep::day, 8)),
            "2004-02-29 00: 9 8 7 6 5 4 3 2 1\n");
}

TEST(Activity, TheStepIsLongerWhereThereAreTooManyPeriods) {
  const ResultList list = listOf({{"0100-01-01 00:00:00", "UPDATE"}, {"9999-12-31 23:00:00", "UPDATE"}});
  const Activity activity = activityOf(list, timeColumn, kindColumn, ActivityStep::hour);
  EXPECT_EQ(activity.step, ActivityStep::month);
  EXPECT_EQ(activity.bars.size(), 118'800U);
  const ResultList days = listOf({{"2004-01-01", "UPDATE"}, {"2004-01-10", "UPDATE"}});
  EXPECT_EQ(activityOf(days, timeColumn, kindColumn, ActivityStep::day, 7, 10).step, ActivityStep::day);
  EXPECT_EQ(activityOf(days, timeColumn, kindColumn, ActivityStep::day, 7, 9).step, ActivityStep::week);
}

TEST(Activity, WithoutAColumnOfKindsAllRowsAreOne) {
  const ResultList list = listOf({{"2004-02-28", "UPDATE"}, {"2004-02-28", "INSERT"}, {"2004-03-01", "UPDATE"}});
  const Activity activity = activityOf(list, timeColumn, std::nullopt, ActivityStep::day);
  EXPECT_TRUE(activity.kinds.empty());
  EXPECT_TRUE(activity.hasOthers);
  EXPECT_EQ(told(activity), "2004-02-28 00: 2\n2004-02-29 00: 0\n2004-03-01 00: 1\n");
}

TEST(Activity, TheTextsOfASpanAreThoseOfItsRowsAndNoOthers) {
  const std::vector<std::string> times = {
      "2004-02-28 23:59:59.999", "2004-02-29",          "2004-02-29 00:00:00.000", "2004-02-29T09:59:59",
      "2004-02-29 10:00:00.000", "2004-02-29T10:30:00", "2004-02-29 11:59:59.999", "2004-02-29 12:00:00",
      "2004-02-29T12:00:00",     "2004-03-01",          "2004-03-01T00:00:00",     "9999-12-31 23:59:59"};
  const auto at = [](const char* text) { return activityHour(text).value(); };
  const ActivitySpan spans[] = {{at("2004-02-29 10"), at("2004-02-29 12")},
                                {at("2004-02-29"), at("2004-02-29 10")},
                                {at("2004-02-29"), at("2004-03-01")},
                                {at("2004-02-28 23"), at("2004-02-29 00")},
                                {at("2004-03-01"), nextPeriod(at("9999-12-31"), ActivityStep::day)}};
  for (const ActivitySpan& span : spans) {
    const results::TextRange range = textRange(span);
    std::size_t within = 0;
    for (const std::string& time : times) {
      const bool isWithin = at(time.c_str()) >= span.from && at(time.c_str()) < span.before;
      EXPECT_EQ(range.contains(time), isWithin) << time << " in " << range.from << ".." << range.before;
      within += isWithin ? 1 : 0;
    }
    EXPECT_GT(within, 0U);
    EXPECT_LT(within, times.size());
    EXPECT_EQ(spanOf(range)->from, span.from);
    EXPECT_EQ(spanOf(range)->before, range.before.empty() ? ActivityHour::max() : span.before);
  }
  EXPECT_EQ(textRange(spans[0]), (results::TextRange{"2004-02-29 10", "2004-02-29 12"}));
  EXPECT_EQ(textRange(spans[2]), (results::TextRange{"2004-02-29", "2004-03-01"}));
  EXPECT_EQ(spanOf({"a", "b"}), std::nullopt);
}

/// The beginning of the period that a date of the year 2004 lies in, by its text.
std::string plainBegin(const std::string& text, ActivityStep step) {
  switch (step) {
    case ActivityStep::hour:
      return text.substr(0, 13);
    case ActivityStep::day:
      return text.substr(0, 10) + " 00";
    case ActivityStep::month:
      return text.substr(0, 7) + "-01 00";
    case ActivityStep::week:
      break;
  }
  std::tm date{};
  date.tm_year = 104;
  date.tm_mon = std::stoi(text.substr(5, 2)) - 1;
  date.tm_mday = std::stoi(text.substr(8, 2));
  date.tm_hour = 12;
  std::mktime(&date);
  date.tm_mday -= (date.tm_wday + 6) % 7;
  std::mktime(&date);
  std::string begin(32, ' ');
  begin.resize(std::strftime(begin.data(), begin.size(), "%Y-%m-%d 00", &date));
  return begin;
}

TEST(Activity, IsWhatCountingRowByRowGives) {
  constexpr std::size_t dates = 1;
  constexpr std::size_t users = 2;
  for (const ActivityStep step : {ActivityStep::hour, ActivityStep::day, ActivityStep::week, ActivityStep::month}) {
    for (const bool filtered : {false, true}) {
      GeneratedList generated(RowFilling::whole, 3);
      ResultList& list = generated.list;
      if (filtered)
        list.setFilter({{{.column = ColumnIndex{users}, .excludes = true, .values = {{"José Núñez", false}}}}, {}});
      std::map<std::string, std::map<Value, std::size_t>> counted;
      for (std::size_t row = 0; row < list.rowCount(); ++row) {
        const results::RowId record = list.rowId({row});
        ++counted[plainBegin(generated.shownText(record, dates), step)][generated.shown(record, users)];
      }
      const Activity activity = activityOf(list, ColumnIndex{dates}, ColumnIndex{users}, step, 100);
      ASSERT_FALSE(activity.bars.empty());
      EXPECT_EQ(activity.undated, 0U);
      std::size_t filledBars = 0;
      for (std::size_t i = 0; i < activity.bars.size(); ++i) {
        const ActivityBar& bar = activity.bars[i];
        if (i > 0) {
          EXPECT_EQ(bar.begin, nextPeriod(activity.bars[i - 1].begin, step));
        }
        auto plain = counted[beginText(bar.begin)];
        if (bar.total() > 0) ++filledBars;
        for (std::size_t kind = 0; kind < activity.kinds.size(); ++kind) {
          const results::ShownValue& value = activity.kinds[kind];
          EXPECT_EQ(bar.counts[kind], (plain[value.isNull ? null : Value(value.text)]));
        }
      }
      const auto isFilled = [](const auto& period) {
        return std::any_of(period.second.begin(), period.second.end(), [](const auto& one) { return one.second > 0; });
      };
      EXPECT_EQ(filledBars, static_cast<std::size_t>(std::count_if(counted.begin(), counted.end(), isFilled)));
      EXPECT_GT(filledBars, 1U);
    }
  }
}

}  // namespace
}  // namespace korvel::query
