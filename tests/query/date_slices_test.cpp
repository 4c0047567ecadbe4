#include "query/date_slices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace korvel::query {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::minutes;
using std::chrono::sys_days;

constexpr std::size_t limit = 5000;
const sys_days march = 2004y / 3 / 1;

/// The minutes of a trail's rows, asked for in the order of their dates or in another.
struct Trail {
  std::vector<Minute> rows;
  bool inOrder = true;

  /// `count` rows of a day, evenly spread over some hours of it.
  void addDay(sys_days day, std::size_t count, minutes begin = 0h, minutes length = 24h) {
    for (std::size_t i = 0; i < count; ++i)
      rows.push_back(day + begin + minutes(static_cast<std::int64_t>(i) * length.count() / std::int64_t(count)));
  }
  /// What an answer holds, cut at the limit.
  [[nodiscard]] std::vector<Minute> ask(const TimeSlice& slice) const {
    const auto begin = std::lower_bound(rows.begin(), rows.end(), slice.first);
    std::vector<Minute> answer(begin, std::upper_bound(begin, rows.end(), slice.last));
    if (!inOrder)
      for (std::size_t i = 0; i < answer.size(); ++i) std::swap(answer[i], answer[i * 7919 % answer.size()]);
    if (answer.size() > limit) answer.resize(limit);
    return answer;
  }
};

struct Walk {
  std::size_t calls = 0;
  std::size_t rows = 0;
  std::vector<Minute> fullMinutes;
};

/// Asks for slice after slice; each must follow the one before without a gap.
Walk walk(const Trail& trail, const TimeSlice& all) {
  Walk walk;
  DateSlices slices(all, trail.ask(all), limit);
  Minute next = all.first;
  while (const auto slice = slices.current()) {
    EXPECT_EQ(slice->first, next);
    EXPECT_LE(slice->last, all.last);
    const auto answer = trail.ask(*slice);
    ++walk.calls;
    if (answer.size() < limit) {
      walk.rows += answer.size();
    } else if (slice->length() > 1min) {
      slices.cut(answer);
      continue;
    } else {
      walk.fullMinutes.push_back(slice->first);
    }
    slices.done(answer);
    next = slice->last + 1min;
  }
  EXPECT_EQ(next, all.last + 1min);
  return walk;
}

const sys_days newYear = 2023y / 1 / 1;
const TimeSlice twoYears = wholeDays(newYear, newYear + days(729));

/// About a million rows over two years: fewer at weekends, most of them by day.
Trail million(bool inOrder) {
  Trail trail{{}, inOrder};
  for (int day = 0; day < 730; ++day) {
    const auto count = static_cast<std::size_t>(day % 7 < 5 ? 1600 + day * 37 % 200 : 500 + day * 13 % 100);
    trail.addDay(newYear + days(day), count / 4);
    trail.addDay(newYear + days(day), count - count / 4, 6h, 10h);
  }
  std::sort(trail.rows.begin(), trail.rows.end());
  return trail;
}

TEST(DateSlices, CoverEachMinuteOnce) {
  const Trail trail = million(true);
  const Walk walked = walk(trail, twoYears);
  EXPECT_EQ(walked.rows, trail.rows.size());
  EXPECT_TRUE(walked.fullMinutes.empty());
}

TEST(DateSlices, AreHardlyMoreThanTheRowsNeed) {
  for (const bool inOrder : {true, false}) {
    const Trail trail = million(inOrder);
    const auto most = static_cast<std::size_t>(1.3 * static_cast<double>(trail.rows.size()) / limit + 40);
    EXPECT_LE(walk(trail, twoYears).calls, most) << inOrder;
    // Without a range all days that a server has are asked for.
    EXPECT_LE(walk(trail, allServerDays()).calls, most) << inOrder;
  }
}

TEST(DateSlices, AreHardlyMoreThanADenseTrailNeeds) {
  Trail trail;
  for (int day = 0; day < 20; ++day) {
    trail.addDay(march + days(day), 5000);
    trail.addDay(march + days(day), 45000, 6h, 10h);
  }
  std::sort(trail.rows.begin(), trail.rows.end());
  EXPECT_LE(walk(trail, wholeDays(march, march + days(19))).calls, 1.3 * 200 + 40);
}

TEST(DateSlices, OfADayWithManyRowsAreParts) {
  Trail trail;
  for (int day = 0; day < 31; ++day) trail.addDay(march + days(day), day == 6 ? 12000 : 700);
  const Walk walked = walk(trail, allServerDays());
  EXPECT_EQ(walked.rows, trail.rows.size());
  EXPECT_TRUE(walked.fullMinutes.empty());
}

TEST(DateSlices, OfAMinuteWithTooManyRowsIsThatMinuteAlone) {
  for (const bool inOrder : {true, false}) {
    Trail trail{{}, inOrder};
    for (int day = 0; day < 31; ++day) trail.addDay(march + days(day), 700);
    trail.rows.insert(trail.rows.end(), 12000, march + days(6) + 9h);
    std::sort(trail.rows.begin(), trail.rows.end());
    const Walk walked = walk(trail, allServerDays());
    EXPECT_EQ(walked.fullMinutes, (std::vector<Minute>{march + days(6) + 9h})) << inOrder;
    EXPECT_LT(walked.calls, 100U) << inOrder;
  }
}

TEST(DateSlices, PassOverYearsWithoutRows) {
  Trail trail;
  for (const int day : {0, 4000, 4001, 8999}) trail.addDay(sys_days(1998y / 1 / 1) + days(day), 4900);
  const Walk walked = walk(trail, allServerDays());
  EXPECT_EQ(walked.rows, 4U * 4900);
  EXPECT_LE(walked.calls, 40U);
}

TEST(DateSlices, WidenAfterABurst) {
  Trail trail;
  trail.addDay(march, 12000, 0h, 5min);
  EXPECT_LE(walk(trail, wholeDays(march, march)).calls, 30U);
}

TEST(DateSlices, LeaveRoomForRowsOfOtherTimes) {
  Trail trail;
  for (int day = 0; day < 400; ++day) trail.addDay(march + days(day), 24);
  const TimeSlice all = wholeDays(march, march + days(399));
  DateSlices slices(all, {}, limit);
  slices.reserve(4900);
  while (slices.current()->length() > 10 * 24h) slices.cut({});
  slices.done(trail.ask(*slices.current()));
  // A row an hour, and room for ninety-two: not for five thousand.
  EXPECT_EQ(slices.current()->length(), 92h);
}

TEST(DateSlices, OfDaysInTheWrongOrderAreNone) {
  EXPECT_FALSE(DateSlices({march, march - days(1)}, {}, limit).current());
}

TEST(DateSlices, OfOneMinuteIsThatMinute) {
  DateSlices slices({march, march}, {}, limit);
  EXPECT_EQ(slices.current(), (TimeSlice{march, march}));
  slices.done({});
  EXPECT_FALSE(slices.current());
}

TEST(Minutes, AreReadFromTheTimesOfServersAndFiles) {
  const Minute noon = march + 12h + 5min;
  for (const char* text : {"2004-03-01 12:05", "2004-03-01 12:05:59.999", "2004-03-01T12:05:00"})
    EXPECT_EQ(minuteOf(text), noon) << text;
  EXPECT_EQ(minuteOf("2004-03-01"), Minute(march));
  for (const char* text : {"", "yesterday", "2004-03-01 ", "2004-03-01 12", "2004-03-01 24:00", "2004-03-01 12:60",
                           "2004-02-30 12:00", "2004-03-01x12:00", "2004-03-01 1a:00"})
    EXPECT_EQ(minuteOf(text), std::nullopt) << text;
}

TEST(Minutes, AreWrittenAsTheProcedureReadsThem) {
  EXPECT_EQ(minuteText(march + 1h + 2min), "2004-03-01 01:02");
  EXPECT_EQ(minuteText(allServerDays().first), "1753-01-01 00:00");
  EXPECT_EQ(minuteText(allServerDays().last), "9999-12-31 23:59");
}

}  // namespace
}  // namespace korvel::query
