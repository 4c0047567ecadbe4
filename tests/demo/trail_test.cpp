#include "demo/trail.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <tuple>

namespace korvel::demo {
namespace {

constexpr std::uint64_t someRows = 20000;

Trail dairyTrail(std::uint64_t rows, std::uint64_t seed = 1) {
  return {singleUserPlant(), rows, seed, dairyStory()};
}

void appendText(std::string& line, const AuditRow::Text& text) {
  line += '|';
  line += text ? std::string(*text) : std::string("<null>");
}

std::string lineOf(const AuditRow& row) {
  std::string line = std::to_string(row.number) + "|" + std::string(row.dateTime);
  for (const AuditRow::Text& text : {row.projectGuid, row.databaseName, row.applicationName, row.tableName,
                                     row.fieldName, row.eventType, row.eventItem, row.oldValue, row.newValue,
                                     row.pcName, row.osUser, row.appUser, row.userName, row.auditType, row.comments})
    appendText(line, text);
  return line + (row.summerTime ? "|1" : "|0");
}

/// FNV-1a: the same number on every machine.
std::uint64_t fingerprint(Trail trail) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  while (const AuditRow* row = trail.next())
    for (const char byte : lineOf(*row) + "\n") hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
  return hash;
}

TEST(Trail, HasExactlyTheRowsAskedFor) {
  for (const std::uint64_t rows : {0U, 1U, 2U, 10U, 299U, 300U, 301U, 5000U}) {
    Trail trail = dairyTrail(rows);
    std::uint64_t count = 0;
    while (const AuditRow* row = trail.next()) EXPECT_EQ(row->number, ++count);
    EXPECT_EQ(count, rows);
    EXPECT_EQ(trail.next(), nullptr) << "after the end comes nothing";
  }
}

TEST(Trail, FollowsFromTheSeed) {
  EXPECT_EQ(fingerprint(dairyTrail(someRows, 7)), fingerprint(dairyTrail(someRows, 7)));
  EXPECT_NE(fingerprint(dairyTrail(someRows, 7)), fingerprint(dairyTrail(someRows, 8)));
  EXPECT_NE(fingerprint(dairyTrail(someRows, 7)), fingerprint({multiUserPlant(), someRows, 7, {}}));
}

// The same with every compiler: a change of this number means that the demo data has changed.
TEST(Trail, IsTheSameOnEveryMachine) {
  EXPECT_EQ(fingerprint(dairyTrail(someRows)), 11360065546057486285U);
  EXPECT_EQ(fingerprint({multiUserPlant(), someRows, 1, {}}), 8728506783289683406U);
}

TEST(Trail, RunsForwardInTime) {
  for (const std::uint64_t rows : {300U, 20000U, 200000U}) {
    Trail trail = dairyTrail(rows);
    std::string before;
    while (const AuditRow* row = trail.next()) {
      // In the repeated hour the summer rows come first; the mark sorts the second hour behind the first.
      const std::string time(row->dateTime);
      const bool doubledHour = time.starts_with("2003-10-26 02") || time.starts_with("2004-10-31 02");
      const std::string now = time.substr(0, 13) + (doubledHour && !row->summerTime ? "~" : "") + time.substr(13);
      ASSERT_LE(before, now) << "row " << row->number << " of " << rows;
      before = now;
    }
  }
}

TEST(Trail, ShowsAsOldValueWhatWasTheNewValueBefore) {
  Trail trail = dairyTrail(someRows);
  using Value = std::optional<std::string>;
  const auto valueOf = [](const AuditRow::Text& text) { return text ? Value(std::string(*text)) : Value(); };
  std::map<std::tuple<Value, Value, Value, Value>, Value> values;
  std::size_t compared = 0;
  while (const AuditRow* row = trail.next()) {
    // Manual readings are entered again each time; a check-out changes nothing.
    if (row->eventItem == "LIC-1901") continue;
    EXPECT_EQ(row->oldValue == row->newValue, row->eventType == "CHECK_OUT") << lineOf(*row);
    const std::tuple thing{valueOf(row->projectGuid), valueOf(row->tableName), valueOf(row->fieldName),
                           valueOf(row->eventItem)};
    const auto known = values.find(thing);
    if (known != values.end()) {
      ASSERT_EQ(known->second, valueOf(row->oldValue)) << lineOf(*row);
      ++compared;
    }
    values[thing] = valueOf(row->newValue);
  }
  EXPECT_GT(compared, someRows / 2);
}

TEST(Trail, GivesInsertsNoOldValueAndDeletesNoNewOne) {
  Trail trail = dairyTrail(someRows);
  std::size_t inserts = 0;
  std::size_t deletes = 0;
  while (const AuditRow* row = trail.next()) {
    if (row->eventType == "INSERT") {
      ++inserts;
      EXPECT_FALSE(row->oldValue) << lineOf(*row);
      EXPECT_TRUE(row->newValue) << lineOf(*row);
    }
    if (row->eventType == "DELETE") {
      ++deletes;
      EXPECT_TRUE(row->oldValue) << lineOf(*row);
      EXPECT_FALSE(row->newValue) << lineOf(*row);
    }
  }
  EXPECT_GT(inserts, 0U);
  EXPECT_GT(deletes, 0U);
}

TEST(Activity, NeverGoesBackAndStaysInItsTwoYears) {
  const Activity activity;
  for (const std::uint64_t count : {1ULL, 3ULL, 1000ULL, 999'999'999ULL}) {
    Moment before = activity.momentOf(0, count);
    for (std::uint64_t step = 1; step <= 1000; ++step) {
      const Moment now = activity.momentOf(count / 1000 * step, count);
      ASSERT_LE(before, now) << count << " " << step;
      before = now;
    }
    EXPECT_LE(before, activity.momentOf(count, count));
  }
  EXPECT_EQ(activity.momentOf(0, 10),
            Moment{std::chrono::sys_days{std::chrono::June / 2 / 2003} - std::chrono::hours{2}});
}

TEST(Activity, IsBusierByDayThanByNight) {
  Trail trail = dairyTrail(someRows);
  std::map<std::string, std::size_t> rowsByHour;
  while (const AuditRow* row = trail.next()) ++rowsByHour[std::string(row->dateTime.substr(11, 2))];
  EXPECT_EQ(rowsByHour.size(), 24U);
  EXPECT_GT(rowsByHour["10"], 2 * rowsByHour["02"]);
}

TEST(Activity, RotatesTheCrewsThroughTheShifts) {
  using namespace std::chrono_literals;
  const auto crewAt = [](std::chrono::local_time<std::chrono::milliseconds> time) { return crewOnDuty({time, false}); };
  const auto day = std::chrono::local_days{2004y / 3 / 10};
  EXPECT_EQ(crewAt(day + 6h), crewAt(day + 13h + 59min));
  EXPECT_NE(crewAt(day + 13h + 59min), crewAt(day + 14h));
  EXPECT_EQ(crewAt(day + 22h), crewAt(day + 29h)) << "the night shift goes past midnight";
  EXPECT_NE(crewAt(day + 10h), crewAt(day + 10h + 24h * 7));
}

}  // namespace
}  // namespace korvel::demo
