#include "evidence/exceptions.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <set>
#include <string>

#include "tests/evidence/record_list.h"

namespace korvel::evidence {
namespace {

using test::listOf;
using test::Record;
using testing::ElementsAre;
using testing::IsEmpty;

/// A record that no rule finds: on a Tuesday at noon, with a comment.
Record usual(int number) {
  return {{"Nr", std::to_string(number)},
          {"DateTime", "2004-03-09 12:00:00.000"},
          {"EventType", "UPDATE"},
          {"OldValue", "a"},
          {"NewValue", "b"},
          {"Comments", "why"},
          {"UserName", "Ida"},
          {"PCName", "PC1"},
          {"T1", "0"}};
}

Record usual(int number, const Record& other) {
  Record record = usual(number);
  for (const auto& [name, value] : other) record[name] = value;
  return record;
}

/// The entry numbers that a rule finds.
std::vector<std::string> found(ExceptionRule rule, const std::vector<Record>& records,
                               const ExceptionSettings& settings = {}) {
  const results::ResultList list = listOf(records);
  const auto exceptions = findExceptions(list, settings);
  std::vector<std::string> numbers;
  for (const results::RowId record : exceptions->of(rule)) numbers.emplace_back(list.store()->cell(record, {0}).text);
  return numbers;
}

TEST(Exceptions, OfUsualRecordsAreNone) {
  const results::ResultList list = listOf({usual(1), usual(2), usual(3)});
  const auto exceptions = findExceptions(list, {{}, true});
  ASSERT_TRUE(exceptions);
  for (const auto& records : exceptions->records) EXPECT_THAT(records, IsEmpty());
  EXPECT_EQ(exceptions->lookedAt, 3U);
  EXPECT_TRUE(exceptions->numbersWereJudged);
}

TEST(Exceptions, EachRuleHasANameAndATextOfItsOwn) {
  std::set<std::string_view> names;
  for (std::size_t i = 0; i < exceptionRuleCount; ++i) {
    EXPECT_EQ(static_cast<std::size_t>(exceptionRules().at(i).rule), i);
    names.insert(exceptionRules().at(i).name);
    names.insert(exceptionRules().at(i).textKey);
  }
  EXPECT_EQ(names.size(), 2 * exceptionRuleCount);
}

TEST(Exceptions, AreChangesWithoutAComment) {
  EXPECT_THAT(found(ExceptionRule::withoutComment,
                    {usual(1, {{"Comments", ""}}), usual(2, {{"Comments", "NULL"}}), usual(3, {{"Comments", "  "}}),
                     usual(4, {{"Comments", ""}, {"NewValue", " a "}}), usual(5)}),
              ElementsAre("1", "2", "3"));
}

TEST(Exceptions, AreDeletions) {
  EXPECT_THAT(
      found(ExceptionRule::deletion, {usual(1, {{"EventType", "DELETE"}}), usual(2, {{"EventType", "Row deleted"}}),
                                      usual(3, {{"EventType", "NULL"}}), usual(4, {{"EventType", "DELE"}})}),
      ElementsAre("1", "2"));
}

TEST(Exceptions, AreOutsideOfTheWorkingHours) {
  const auto at = [](int number, const char* time) { return usual(number, {{"DateTime", time}}); };
  const std::vector<Record> records = {at(1, "2004-03-08 05:59:59.999"),
                                       at(2, "2004-03-08 06:00:00.000"),
                                       at(3, "2004-03-08 17:59:59.999"),
                                       at(4, "2004-03-08 18:00:00.000"),
                                       at(5, "2004-03-13 12:00:00.000"),
                                       at(6, "2004-03-14 12:00:00.000"),
                                       at(7, "no time"),
                                       at(8, "NULL")};
  EXPECT_THAT(found(ExceptionRule::outsideHours, records), ElementsAre("1", "4", "5", "6"));
  // A night shift from Monday to Tuesday.
  ExceptionSettings night;
  night.hours = {std::chrono::hours{22}, std::chrono::hours{6}, 0b0000001};
  EXPECT_THAT(found(ExceptionRule::outsideHours,
                    {at(1, "2004-03-08 05:00:00"), at(2, "2004-03-08 21:59:59"), at(3, "2004-03-08 22:00:00"),
                     at(4, "2004-03-09 05:59:59"), at(5, "2004-03-09 06:00:00"), at(6, "2004-03-09 23:00:00")},
                    night),
              ElementsAre("1", "2", "5", "6"));
}

TEST(Exceptions, AreOneUserOnTwoComputersWithinAMinute) {
  const auto on = [](int number, const char* user, const char* computer, const char* time) {
    return usual(number, {{"UserName", user}, {"PCName", computer}, {"DateTime", time}});
  };
  EXPECT_THAT(found(ExceptionRule::twoComputers,
                    {on(1, "Ida", "PC1", "2004-03-09 12:00:00.000"), on(2, "Ben", "PC2", "2004-03-09 12:00:10.000"),
                     on(3, "Ida", "PC2", "2004-03-09 12:01:00.000"), on(4, "Ida", "PC1", "2004-03-09 12:02:00.001"),
                     on(5, "", "PC9", "2004-03-09 12:02:00.001"), on(6, "Ida", "", "2004-03-09 12:02:00.001"),
                     on(7, "Ben", "PC3", "2004-03-09 23:59:30.000"), on(8, "Ben", "PC2", "2004-03-10 00:00:10.000")}),
              ElementsAre("3", "8"));
  // Who has no full name is known by another one.
  EXPECT_THAT(found(ExceptionRule::twoComputers, {usual(1, {{"UserName", ""}, {"AppUser", "x"}, {"PCName", "A"}}),
                                                  usual(2, {{"UserName", "NULL"}, {"AppUser", "x"}, {"PCName", "B"}})}),
              ElementsAre("2"));
}

TEST(Exceptions, AreValuesThatDoNotContinueTheOnesBefore) {
  const auto change = [](int number, const char* item, const char* from, const char* to) {
    return usual(number, {{"EventItem", item}, {"OldValue", from}, {"NewValue", to}});
  };
  EXPECT_THAT(
      found(ExceptionRule::discontinued,
            {change(1, "T1", "1", "2"), change(2, "T2", "9", "8"), change(3, "T1", "2", "3"), change(4, "T1", "7", "4"),
             change(5, "", "1", "2"), change(6, "", "7", "8"), change(7, "T2", "8", "7")}),
      ElementsAre("4"));
  // Another area is another item.
  Record other = change(2, "T1", "7", "8");
  other["TableName"] = "Other";
  EXPECT_THAT(found(ExceptionRule::discontinued, {change(1, "T1", "1", "2"), other}), IsEmpty());
}

TEST(Exceptions, AreMissingNumbersOfAWholeTrailOnly) {
  const std::vector<Record> records = {usual(5), usual(6), usual(9), usual(10)};
  EXPECT_THAT(found(ExceptionRule::numbersMissing, records, {{}, true}), ElementsAre("9"));
  EXPECT_THAT(found(ExceptionRule::numbersMissing, records), IsEmpty());
}

TEST(Exceptions, AreNumbersThatAreUsedTwice) {
  EXPECT_THAT(found(ExceptionRule::numberRepeated,
                    {usual(1), usual(2), usual(2, {{"NewValue", "x"}}), usual(2, {{"NewValue", "y"}}), usual(3)}),
              ElementsAre("2", "2", "2"));
}

/// One of two categories is in the list twice.
TEST(Exceptions, ARecordOfTwoCategoriesIsLookedAtOnce) {
  const results::ResultList list =
      listOf({usual(2, {{"EventType", "DELETE"}}), usual(1), usual(2, {{"EventType", "DELETE"}})});
  const auto exceptions = findExceptions(list, {});
  EXPECT_EQ(exceptions->lookedAt, 2U);
  EXPECT_EQ(exceptions->of(ExceptionRule::deletion).size(), 1U);
  EXPECT_THAT(exceptions->of(ExceptionRule::numberRepeated), IsEmpty());
}

TEST(Exceptions, AreStepsOfTheClockThatTheEndOfSummerTimeDoesNotExplain) {
  const auto at = [](int number, const char* time, const char* summer) {
    return usual(number, {{"DateTime", time}, {"T1", summer}});
  };
  EXPECT_THAT(found(ExceptionRule::clockStep, {at(1, "2004-10-31 02:50:00", "1"), at(2, "2004-10-31 02:05:00", "0"),
                                               at(3, "2004-10-31 02:04:59", "0"), at(4, "2004-11-01 12:00:00", "1"),
                                               at(5, "2004-11-01 10:30:00", "0")}),
              ElementsAre("3", "5"));
}

TEST(Exceptions, AreInTheHourThatExistsTwice) {
  const auto at = [](int number, const char* time, const char* summer) {
    return usual(number, {{"DateTime", time}, {"T1", summer}});
  };
  EXPECT_THAT(
      found(ExceptionRule::repeatedHour,
            {at(1, "2004-10-31 01:50:00", "1"), at(2, "2004-10-31 02:10:00", "1"), at(3, "2004-10-31 02:50:00", "1"),
             at(4, "2004-10-31 02:05:00", "0"), at(5, "2004-10-31 02:50:00", "0"), at(6, "2004-10-31 03:10:00", "0")}),
      ElementsAre("2", "3", "4", "5"));
}

TEST(Exceptions, AreChangesFarBeyondTheUsualOnes) {
  const auto change = [](int number, const char* from, const char* to) {
    return usual(number, {{"EventItem", "TIC"}, {"OldValue", from}, {"NewValue", to}});
  };
  // Changes by 1, 1, 2, 2, 1 and 9: usual is 2, and unusual what is more than 10.
  std::vector<Record> records = {change(1, "10 bar", "11 bar"), change(2, "11 bar", "12 bar"),
                                 change(3, "12 bar", "10 bar"), change(4, "10 bar", "8 bar"),
                                 change(5, "8 bar", "9 bar"),   change(6, "9 bar", "0 bar")};
  EXPECT_THAT(found(ExceptionRule::unusualChange, records), IsEmpty());
  records.push_back(change(7, "0 bar", "10.1 bar"));
  EXPECT_THAT(found(ExceptionRule::unusualChange, records), ElementsAre("7"));
  records.back()["NewValue"] = "10 bar";
  EXPECT_THAT(found(ExceptionRule::unusualChange, records), IsEmpty());
  records.back()["NewValue"] = "10000 mbar";
  EXPECT_THAT(found(ExceptionRule::unusualChange, records), IsEmpty());
  // Four changes show nothing usual.
  records = {change(1, "1", "2"), change(2, "2", "3"), change(3, "3", "4"), change(4, "4", "1000")};
  EXPECT_THAT(found(ExceptionRule::unusualChange, records), IsEmpty());
}

TEST(Exceptions, AreLookedForAmongTheRowsThatAreShown) {
  results::ResultList list =
      listOf({usual(1, {{"EventType", "DELETE"}}), usual(2, {{"EventType", "DELETE"}, {"UserName", "Ben"}})});
  results::RowFilter filter;
  filter.columns.push_back({.column = {14}, .values = {{"Ben", false}}});
  list.setFilter(filter);
  EXPECT_EQ(findExceptions(list, {})->of(ExceptionRule::deletion).size(), 1U);
}

TEST(Exceptions, OfOtherListsAreNotLookedFor) {
  results::ResultList empty(results::RowFilling::whole);
  EXPECT_EQ(findExceptions(empty, {})->lookedAt, 0U);
  results::ResultList list = listOf({usual(1)});
  list.setColumns({{"Something", results::standardColumnWidth, 0}});
  EXPECT_FALSE(findExceptions(list, {}));
}

TEST(Exceptions, RowsWithoutANumberAreLeftOut) {
  const results::ResultList list = listOf({usual(1), usual(2, {{"Nr", "NULL"}}), usual(3, {{"Nr", "x"}})});
  EXPECT_EQ(findExceptions(list, {})->lookedAt, 1U);
}

}  // namespace
}  // namespace korvel::evidence
