#include "results/column_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "results/row_groups.h"
#include "tests/results/generated_list.h"

namespace korvel::results {
namespace {

using test::GeneratedList;

using Counts = std::map<std::pair<bool, std::string>, std::size_t>;

Counts countsOf(const ColumnValues& values) {
  Counts counts;
  for (const ValueCount& each : values.values) counts[{each.value.isNull, each.value.text}] = each.count;
  return counts;
}

ShownValue text(std::string value) {
  return {std::move(value), false};
}

TEST(ColumnValues, AreCountedExactly) {
  for (const RowFilling filling : {RowFilling::standard, RowFilling::whole}) {
    GeneratedList made(filling, 3);
    for (const bool sorted : {false, true}) {
      if (sorted) made.list.sortBy({0}, SortOrder::ascending);
      for (std::size_t column = 0; column <= GeneratedList::columnCount; ++column) {
        Counts expected;
        for (const RowId record : made.list.wholeRows()) {
          const test::Value shown = column < GeneratedList::columnCount ? made.shown(record, column) : test::Value("");
          std::string shownText = shown.value_or("");
          if (column == 1) shownText = shownText.substr(0, 10);
          ++expected[{!shown, shownText}];
        }
        const ColumnValues values = columnValues(made.list, {column});
        EXPECT_EQ(values.areDates, column == 1);
        EXPECT_FALSE(values.tooMany);
        ASSERT_EQ(countsOf(values), expected) << column;
        ASSERT_EQ(values.values.size(), expected.size());
        for (std::size_t i = 1; i < values.values.size(); ++i)
          ASSERT_GE(values.values[i - 1].count, values.values[i].count);
      }
    }
  }
}

TEST(ColumnValues, EquallyFrequentOnesAreInTheOrderOfSorting) {
  ResultList list(RowFilling::whole);
  list.setRows(test::storeOf({{"b"}, {"Ä"}, {"a"}, {"B"}, {"z"}, {"z"}, {test::null}, {""}}),
               {{0}, {1}, {2}, {3}, {4}, {5}, {6}, {7}});
  std::vector<std::string> order;
  for (const ValueCount& each : columnValues(list, {0}).values)
    order.push_back(each.value.isNull ? "null" : "'" + each.value.text + "'");
  EXPECT_EQ(order, (std::vector<std::string>{"'z'", "''", "'a'", "'B'", "'b'", "'Ä'", "null"}));
}

TEST(ColumnValues, OtherColumnsFiltersCountAndItsOwnDoesNot) {
  GeneratedList made(RowFilling::whole);
  const std::size_t all = columnValues(made.list, {2}).values.size();
  made.list.setFilter({{{.column = {2}, .values = {text("jose")}}}, {}});
  EXPECT_EQ(columnValues(made.list, {2}).values.size(), all);
  std::size_t counted = 0;
  for (const ValueCount& each : columnValues(made.list, {5}).values) counted += each.count;
  EXPECT_EQ(counted, made.list.rowCount());
}

TEST(ColumnValues, MoreThanTheLimitAreNotListed) {
  GeneratedList made(RowFilling::whole);
  const ColumnValues values = columnValues(made.list, {4}, {}, 1000);
  EXPECT_TRUE(values.tooMany);
  EXPECT_TRUE(values.values.empty());
  const ColumnValues few = columnValues(made.list, {4}, TextMatcher("text 123", {}), 1000);
  EXPECT_FALSE(few.tooMany);
  ASSERT_FALSE(few.values.empty());
  for (const ValueCount& each : few.values) EXPECT_TRUE(each.value.text.starts_with("text 123"));
  EXPECT_FALSE(columnValues(made.list, {2}, {}, columnValues(made.list, {2}).values.size()).tooMany);
  EXPECT_TRUE(columnValues(made.list, {2}, {}, columnValues(made.list, {2}).values.size() - 1).tooMany);
}

TEST(ColumnValues, AColumnWithOneOtherTextHasNoDates) {
  ResultList list(RowFilling::whole);
  list.setRows(test::storeOf({{"2004-03-07 10:00:00"}, {"2004-03-07 11:00:00"}, {""}, {test::null}}),
               {{0}, {1}, {2}, {3}});
  EXPECT_TRUE(columnValues(list, {0}).areDates);
  EXPECT_EQ(columnValues(list, {0}).values.front(), (ValueCount{text("2004-03-07"), 2}));
  list.setRows(test::storeOf({{"2004-03-07 10:00:00"}, {"soon"}}), {{0}, {1}});
  EXPECT_FALSE(columnValues(list, {0}).areDates);
  EXPECT_EQ(columnValues(list, {0}).values.size(), 2U);
  list.setRows(test::storeOf({{""}}), {{0}});
  EXPECT_FALSE(columnValues(list, {0}).areDates);
}

TEST(RowGroups, AgreeWithCountingEveryRow) {
  for (const RowFilling filling : {RowFilling::standard, RowFilling::whole}) {
    GeneratedList made(filling, 3);
    made.list.setFilter({{{.column = {2}, .excludes = true, .values = {text("jose")}}}, {}});
    const std::vector<std::vector<GroupKey>> choices = {
        {{{2}}},        {{{1}, DatePart::day}}, {{{1}, DatePart::month}, {{5}}},
        {{{3}}, {{2}}}, {{{0}}, {{4}}},         {{{2}}, {{5}}, {{1}, DatePart::hour}}};
    for (const std::vector<GroupKey>& keys : choices) {
      std::map<std::vector<std::pair<bool, std::string>>, std::size_t> expected;
      for (std::size_t row = 0; row < made.list.rowCount(); ++row) {
        std::vector<std::pair<bool, std::string>> group;
        for (const GroupKey& key : keys) {
          const test::Value shown = made.shown(made.list.rowId({row}), key.column.value);
          group.emplace_back(!shown, std::string(datePart(shown.value_or(""), key.part)));
        }
        ++expected[group];
      }
      const std::vector<RowGroup> groups = groupRows(made.list, keys);
      ASSERT_EQ(groups.size(), expected.size());
      for (std::size_t i = 0; i < groups.size(); ++i) {
        std::vector<std::pair<bool, std::string>> group;
        for (const ShownValue& value : groups[i].values) group.emplace_back(value.isNull, value.text);
        ASSERT_EQ(groups[i].count, expected[group]);
        ASSERT_GE(groups[i == 0 ? 0 : i - 1].count, groups[i].count);
      }
    }
  }
}

TEST(RowGroups, TheLargestAreTheFirstOfAll) {
  GeneratedList made(RowFilling::whole, 3);
  const std::vector<std::vector<GroupKey>> choices = {{{{2}}}, {{{4}}}, {{{3}}, {{2}}}, {{{1}, DatePart::hour}, {{4}}}};
  for (const std::vector<GroupKey>& keys : choices) {
    const std::vector<RowGroup> all = groupRows(made.list, keys);
    ASSERT_GT(all.size(), 2U);
    for (const std::size_t most : {std::size_t{1}, all.size() / 2, all.size() - 1, all.size(), all.size() + 1}) {
      const LargestGroups largest = largestGroups(made.list, keys, most);
      EXPECT_EQ(largest.total, all.size());
      ASSERT_EQ(largest.groups.size(), std::min(most, all.size()));
      EXPECT_TRUE(std::equal(largest.groups.begin(), largest.groups.end(), all.begin()));
    }
  }
}

TEST(RowGroups, EqualCountsAreInTheOrderOfTheKeys) {
  ResultList list(RowFilling::whole);
  list.setRows(test::storeOf({{"b", "1"}, {"a", "2"}, {"a", "1"}, {test::null, "9"}}), {{0}, {1}, {2}, {3}});
  const std::vector<GroupKey> keys = {{{0}}, {{1}}};
  std::vector<std::string> order;
  for (const RowGroup& group : groupRows(list, keys)) order.push_back(group.values[0].text + group.values[1].text);
  EXPECT_EQ(order, (std::vector<std::string>{"9", "a1", "a2", "b1"}));
  EXPECT_TRUE(groupRows(list, {}).empty());
  EXPECT_TRUE(groupRows(ResultList(RowFilling::whole), keys).empty());
}

/// A record of several categories is several rows.
TEST(RowGroups, CountRowsAndNotRecords) {
  ResultList list(RowFilling::whole);
  list.setRows(test::storeOf({{"a", "1"}, {"b", "2"}, {"c", "9"}, {"a", "2"}}), {{0}, {1}, {0}, {3}, {1}, {0}});
  const std::vector<GroupKey> keys = {{{0}}, {{1}}};
  std::vector<std::string> told;
  for (const RowGroup& group : groupRows(list, keys))
    told.push_back(group.values[0].text + group.values[1].text + std::to_string(group.count));
  EXPECT_EQ(told, (std::vector<std::string>{"a13", "b22", "a21"}));
}

TEST(ColumnValues, CountRowsAndNotRecords) {
  ResultList list(RowFilling::whole);
  // As many rows as there are records, and still not all of them.
  list.setRows(test::storeOf({{"a"}, {"b"}, {"c"}, {test::null}}), {{0}, {0}, {1}, {3}});
  EXPECT_EQ(countsOf(columnValues(list, {0})), (Counts{{{false, "a"}, 2}, {{false, "b"}, 1}, {{true, ""}, 1}}));
}

TEST(ColumnValues, WhatOtherListsShowDoesNotCount) {
  ResultList list(RowFilling::whole);
  list.setRows(test::storeOf({{"2004-03-07"}, {"soon"}}), {{0}});
  EXPECT_TRUE(columnValues(list, {0}).areDates);
}

TEST(DatePart, IsThatOfADateAlone) {
  EXPECT_EQ(datePart("2004-03-07 03:12:44.310", DatePart::year), "2004");
  EXPECT_EQ(datePart("2004-03-07 03:12:44.310", DatePart::hour), "2004-03-07 03");
  EXPECT_EQ(datePart("2004-03-07", DatePart::hour), "2004-03-07");
  EXPECT_EQ(datePart("2004-03-07x", DatePart::year), "2004-03-07x");
  EXPECT_EQ(datePart("2004-3-7", DatePart::year), "2004-3-7");
  EXPECT_EQ(datePart("2004-03-07 03", DatePart::whole), "2004-03-07 03");
}

}  // namespace
}  // namespace korvel::results
