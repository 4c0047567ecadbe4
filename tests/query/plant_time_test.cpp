#include "query/plant_time.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "query/audit_record.h"

namespace korvel::query {
namespace {

using namespace std::chrono_literals;
using Shown = PlantTime::Shown;

struct Written {
  std::string number;
  std::string stamp;
  std::string flag;
};

std::shared_ptr<results::RowStore> storeOf(const std::vector<Written>& rows) {
  auto store = std::make_shared<results::RowStore>();
  const std::vector<db::Field> fields{{"Nr"}, {"DateTime"}, {"Comments"}, {"T1"}};
  store->beginResult(fields);
  for (const Written& row : rows) {
    const std::vector<db::Cell> cells{{row.number}, {row.stamp}, {"x"}, {row.flag, row.flag == "null"}};
    store->append(cells);
  }
  return store;
}

/// Which of two times each row is: "1", "2", or "-" where that is not known.
std::string shownOf(const std::vector<Written>& rows) {
  const auto store = storeOf(rows);
  PlantTimes times(store);
  std::string text;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto time = times.of({static_cast<std::uint32_t>(i)});
    text += !time ? '?' : time->shown == Shown::first ? '1' : time->shown == Shown::second ? '2' : '-';
  }
  return text;
}

TEST(PlantTime, FlagsSaySummerOrStandardTimeOrNothing) {
  for (const char* const flag : {"1", "true", "True", " 1 "}) EXPECT_EQ(seasonOf({flag}), Season::summer) << flag;
  for (const char* const flag : {"0", "false", "FALSE"}) EXPECT_EQ(seasonOf({flag}), Season::standard) << flag;
  for (const char* const flag : {"", "2", "-1", "yes", "10"}) EXPECT_EQ(seasonOf({flag}), Season::unknown) << flag;
  EXPECT_EQ(seasonOf({"1", true}), Season::unknown);
}

TEST(PlantTime, StampsAreReadAsTheyAreStored) {
  const std::vector<std::pair<std::string, std::chrono::nanoseconds>> stamps = {
      {"2004-03-07 13:45:59.123", 13h + 45min + 59s + 123ms},
      {"2004-03-07T13:45:59.1234567", 13h + 45min + 59s + 123'456'700ns},
      {" 2004-03-07 13:45 ", 13h + 45min}};
  for (const auto& [stamp, time] : stamps) {
    const auto wall = wallTimeOf(stamp);
    ASSERT_TRUE(wall) << stamp;
    EXPECT_EQ(wall->day, "2004-03-07");
    EXPECT_EQ(wall->time, time) << stamp;
    EXPECT_FALSE(wall->offset);
  }
  for (const char* const none :
       {"", "2004-03-07", "7.3.2004 13:45", "2004-03-07 24:00:00", "2004-03-07 13:60:00", "2004-03-07 13:45:60",
        "2004-03-07 13", "2004-03-07 13:45:59.", "2004-03-07 13:45:59 x", "2004-03-07 13:45:59 +2",
        "2004-03-07 13:45:59Zx", "2004-03-07 13:4"})
    EXPECT_FALSE(wallTimeOf(none)) << none;
}

/// No other way to an offset is known: the flag alone decides none.
TEST(PlantTime, HasAnOffsetOnlyWhereTheStampIsWrittenWithIt) {
  const std::vector<std::pair<std::string, std::string>> stamps = {{"2004-07-07 13:45:59.1234567 +02:00", "+02:00"},
                                                                   {"2004-07-07T13:45:59-0330", "-03:30"},
                                                                   {"2004-07-07T13:45Z", "+00:00"}};
  for (const auto& [stamp, offset] : stamps) {
    PlantTimes times(storeOf({{"1", stamp, "1"}}));
    const auto time = times.of({0});
    ASSERT_TRUE(time && time->offset) << stamp;
    EXPECT_EQ(offsetText(*time->offset), offset);
  }
  PlantTimes times(storeOf({{"1", "2004-07-07 13:45:59.123", "1"}}));
  EXPECT_FALSE(times.of({0})->offset);
  EXPECT_EQ(times.of({0})->season, Season::summer);
}

TEST(PlantTime, OfTheHourThatExistsTwiceTheFlagSaysWhich) {
  EXPECT_EQ(shownOf({{"1", "2003-10-26 01:59:00.000", "1"},
                     {"2", "2003-10-26 02:15:00.000", "1"},
                     {"3", "2003-10-26 02:45:00.000", "1"},
                     {"4", "2003-10-26 02:15:00.000", "0"},
                     {"5", "2003-10-26 02:30:00.000", "0"},
                     {"6", "2003-10-26 02:50:00.000", "0"},
                     {"7", "2003-10-26 03:10:00.000", "0"}}),
            "-1122--");
}

/// Whichever order the rows have come in; others of the same hour on other days do not count.
TEST(PlantTime, EntryNumbersSayInWhichDirectionTheClockWasSet) {
  EXPECT_EQ(shownOf({{"12", "2003-10-26 02:20:00.000", "0"},
                     {"9", "2003-10-26 02:40:00.000", "1"},
                     {"2", "2003-10-25 02:30:00.000", "1"},
                     {"100", "2003-10-27 02:30:00.000", "0"},
                     {"11", "2003-10-26 02:20:00.000", "null"}}),
            "21---");
  // In spring, also where two records have changed places.
  EXPECT_EQ(shownOf({{"1", "2004-03-28 01:30:00.000", "0"},
                     {"2", "2004-03-28 03:00:00.000", "1"},
                     {"3", "2004-03-28 01:59:59.000", "0"},
                     {"4", "2004-03-28 03:30:00.000", "1"}}),
            "----");
  EXPECT_EQ(shownOf({{"2", "2004-03-28 03:00:00.000", "1"}, {"3", "2004-03-28 01:59:59.000", "0"}}), "--");
  // The clock of a plant where it is set forward by half an hour only.
  EXPECT_EQ(shownOf({{"1", "2004-03-28 01:30:00.000", "0"}, {"2", "2004-03-28 02:05:00.000", "1"}}), "--");
}

TEST(PlantTime, NothingIsClaimedThatRecordsDoNotProve) {
  // No record in standard time lies before one in summer time.
  EXPECT_EQ(shownOf({{"1", "2003-10-26 02:15:00.000", "1"}, {"2", "2003-10-26 02:30:00.000", "0"}}), "--");
  // A wrong flag.
  EXPECT_EQ(shownOf({{"1", "2003-10-26 02:15:00.000", "1"},
                     {"2", "2003-10-26 18:30:00.000", "1"},
                     {"3", "2003-10-26 02:10:00.000", "0"}}),
            "---");
  // No entry numbers, no flags, no stamps.
  EXPECT_EQ(shownOf({{"a", "2003-10-26 02:15:00.000", "1"}, {"b", "2003-10-26 02:10:00.000", "0"}}), "--");
  EXPECT_EQ(shownOf({{"1", "2003-10-26 02:15:00.000", ""}, {"2", "2003-10-26 02:10:00.000", "0"}}), "--");
  EXPECT_EQ(shownOf({{"1", "yesterday", "1"}, {"2", "2003-10-26", "0"}}), "??");
}

TEST(PlantTime, IsReadFromAnswersThatHaveAStamp) {
  const std::vector<db::Field> captions{{"Summer Time"}, {"Date Time"}, {"Entry ID"}};
  const auto columns = stampColumnsOf(captions);
  ASSERT_TRUE(columns);
  EXPECT_EQ(columns->stamp, 1U);
  EXPECT_EQ(columns->entryNumber, 2U);
  EXPECT_EQ(columns->flag, 0U);
  const std::vector<db::Field> counted{{"EventType"}, {"n"}};
  EXPECT_FALSE(stampColumnsOf(counted));
}

TEST(RepeatedTimes, AreThoseOfEveryDay) {
  RepeatedTimes times;
  times.add({"1"}, {"2003-10-26 02:45:00.000"}, {"1"});
  times.add({"2"}, {"2003-10-26 02:15:00.000"}, {"0"});
  times.add({"3"}, {"2004-07-01 02:15:00.000"}, {"1"});
  times.add({"4"}, {"2004-10-31T02:30:00.000"}, {"1"});
  times.add({"5"}, {"2004-10-31T02:30:00.000"}, {"0"});
  const auto all = times.all();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[0].fromStamp, "2003-10-26 02:15:00.000");
  EXPECT_EQ(all[0].toStamp, "2003-10-26 02:45:00.000");
  EXPECT_EQ(all[1].fromStamp, all[1].toStamp);
}

}  // namespace
}  // namespace korvel::query
