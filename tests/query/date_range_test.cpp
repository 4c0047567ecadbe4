#include "query/date_range.h"

#include <gtest/gtest.h>

namespace korvel::query {
namespace {

using std::chrono::year_month_day;

constexpr year_month_day day(int year, unsigned month, unsigned dayOfMonth) {
  return {std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{dayOfMonth}};
}

TEST(DateRange, IsInactiveAtFirstAndThenReadsFalse) {
  const DateRange range;
  EXPECT_FALSE(range.DateRangeActive);
  EXPECT_EQ(fromDateText(range), "False");
  EXPECT_EQ(toDateText(range), "False");
}

TEST(DateRange, InactiveHidesItsDates) {
  const DateRange range{day(2004, 3, 1), day(2004, 3, 7), false};
  EXPECT_EQ(fromDateText(range), "False");
  EXPECT_EQ(toDateText(range), "False");
}

TEST(DateRange, IncludesBothDaysWhole) {
  const DateRange range{day(2004, 3, 7), day(2004, 12, 31), true};
  EXPECT_EQ(fromDateText(range), "2004-03-07 00:00:00.000");
  EXPECT_EQ(toDateText(range), "2004-12-31 23:59:59.999");
}

TEST(DateRange, SameDayOnBothSidesIsOneWholeDay) {
  const DateRange range{day(2024, 2, 29), day(2024, 2, 29), true};
  EXPECT_EQ(fromDateText(range), "2024-02-29 00:00:00.000");
  EXPECT_EQ(toDateText(range), "2024-02-29 23:59:59.999");
  EXPECT_TRUE(isInOrder(range));
}

TEST(DateRange, IsOutOfOrderOnlyWhenTheLastDayLiesBeforeTheFirst) {
  EXPECT_FALSE(isInOrder({day(2004, 3, 7), day(2004, 3, 6), true}));
  EXPECT_TRUE(isInOrder({day(2004, 3, 7), day(2004, 3, 8), true}));
  EXPECT_TRUE(isInOrder({day(2003, 12, 31), day(2004, 1, 1), true}));
}

TEST(ParseDay, ReadsDaysOfTheCalendar) {
  EXPECT_EQ(parseDay("2004-03-07"), day(2004, 3, 7));
  EXPECT_EQ(parseDay("2024-02-29"), day(2024, 2, 29));
  EXPECT_EQ(parseDay("0100-01-01"), day(100, 1, 1));
  EXPECT_EQ(parseDay("9999-12-31"), day(9999, 12, 31));
}

TEST(ParseDay, RefusesEverythingElse) {
  for (const char* text : {"", "2023-02-29", "2004-13-01", "2004-00-10", "2004-04-31", "2004-04-00", "2004-3-7",
                           "04-03-07", "2004/03/07", "07.03.2004", "2004-03-07 ", " 2004-03-07", "2004-03-07T00:00",
                           "+204-03-07", "2004-03--7", "0099-12-31", "-200-01-01", "20\xD9\xA1-03-07"})
    EXPECT_EQ(parseDay(text), std::nullopt) << '"' << text << '"';
}

}  // namespace
}  // namespace korvel::query
