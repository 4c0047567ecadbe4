#include "results/row_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "results/column_values.h"
#include "tests/results/generated_list.h"

namespace korvel::results {
namespace {

using test::GeneratedList;

bool meets(const GeneratedList& made, RowId record, const ColumnCondition& condition) {
  const test::Value shown = made.shown(record, condition.column.value);
  bool met = false;
  for (const ShownValue& value : condition.values) met = met || (value.isNull ? !shown : shown && *shown == value.text);
  for (const std::string& beginning : condition.beginnings) met = met || (shown && shown->starts_with(beginning));
  if (condition.range && shown)
    met = met ||
          (*shown >= condition.range->from && (condition.range->before.empty() || *shown < condition.range->before));
  return met != condition.excludes;
}

std::vector<RowId> plainly(const GeneratedList& made, const RowFilter& filter) {
  std::vector<RowId> rows;
  for (const RowId record : made.list.wholeRows()) {
    bool passes = std::all_of(filter.columns.begin(), filter.columns.end(),
                              [&](const ColumnCondition& each) { return meets(made, record, each); });
    for (const TextCondition& condition : filter.texts)
      passes = passes && std::any_of(condition.columns.begin(), condition.columns.end(), [&](ColumnIndex column) {
                 return condition.matcher.matches(made.shownText(record, column.value));
               });
    if (passes) rows.push_back(record);
  }
  return rows;
}

std::vector<RowId> shownRows(const ResultList& list) {
  std::vector<RowId> rows;
  for (std::size_t row = 0; row < list.rowCount(); ++row) rows.push_back(list.rowId({row}));
  return rows;
}

ShownValue text(std::string value) {
  return {std::move(value), false};
}
const ShownValue nullValue{"", true};

std::vector<RowFilter> filters() {
  std::vector<ColumnCondition> conditions = {
      {.column = {2}, .values = {text("jose")}},
      {.column = {2}, .values = {text("")}},
      {.column = {2}, .values = {text("Straße"), text("Luca"), text("nobody")}},
      {.column = {3}, .values = {nullValue}},
      {.column = {3}, .values = {text("")}},
      {.column = {3}, .values = {nullValue, text("")}},
      {.column = {3}, .values = {}},
      {.column = {0}, .values = {text("12"), text("007"), text("7"), text("-3999")}},
      {.column = {1}, .beginnings = {"2004-01-0", "2004-01-03", "2004-02", "2004-02-11"}},
      {.column = {1}, .range = TextRange{"2004-01-05", "2004-01-06 12"}},
      {.column = {1}, .range = TextRange{"2004-02-20", ""}},
      {.column = {1}, .values = {text("")}, .beginnings = {"2004-01"}, .range = TextRange{"2004-02-20", ""}},
      {.column = {5}, .values = {text("😀 pump"), text("\xFF raw")}},
      {.column = {6}, .values = {text("")}},
      {.column = {7}, .values = {text("last"), nullValue}},
      {.column = {99}, .values = {text("x")}},
  };
  const std::size_t plain = conditions.size();
  for (std::size_t i = 0; i < plain; ++i) {
    conditions.push_back(conditions[i]);
    conditions.back().excludes = true;
  }
  std::vector<RowFilter> all;
  for (const ColumnCondition& condition : conditions) all.push_back({{condition}, {}});
  for (std::size_t i = 0; i + 5 < conditions.size(); ++i) all.push_back({{conditions[i], conditions[i + 5]}, {}});
  const TextCondition tic{TextMatcher("tic", {}), {{4}, {5}}};
  all.push_back({{}, {tic}});
  all.push_back({{conditions[plain]}, {tic, {TextMatcher("1", {}), {{0}, {4}}}}});
  return all;
}

TEST(RowFilter, ShowsExactlyTheRowsThatMeetEveryCondition) {
  for (const RowFilling filling : {RowFilling::standard, RowFilling::whole}) {
    GeneratedList made(filling, 3);
    for (const bool sorted : {false, true}) {
      if (sorted) made.list.sortBy({0}, SortOrder::descending);
      for (const RowFilter& filter : filters()) {
        made.list.setFilter(filter);
        ASSERT_EQ(shownRows(made.list), plainly(made, filter)) << &filter - filters().data();
        ASSERT_EQ(made.list.wholeRowCount(), (GeneratedList::wideRows + GeneratedList::narrowRows + 2) / 3);
      }
    }
  }
}

TEST(RowFilter, BothFormsOfATimeAreOneOrderInARange) {
  const TextRange range{"2004-01-05 10", "2004-01-06 12"};
  for (const char* within : {"2004-01-05 10", "2004-01-05T10:00", "2004-01-06", "2004-01-06T11:59", "2004-01-06 11:59"})
    EXPECT_TRUE(range.contains(within)) << within;
  for (const char* outside :
       {"", "2004-01-05", "2004-01-05T09:59", "2004-01-06T12:00", "2004-01-06 12", "2004-01-07T01"})
    EXPECT_FALSE(range.contains(outside)) << outside;
  EXPECT_TRUE((TextRange{"2004-01-05", ""}.contains("2004-01-05T00:00")));
}

TEST(RowFilter, SortingKeepsWhatIsShown) {
  GeneratedList made(RowFilling::standard);
  const RowFilter filter{{{.column = {2}, .values = {text("jose"), text("Luca")}}}, {}};
  made.list.setFilter(filter);
  for (std::size_t key = 0; key < 6; ++key) {
    for (const SortOrder order : {SortOrder::ascending, SortOrder::descending}) {
      made.list.sortBy({key}, order);
      const std::vector<RowId> shown = shownRows(made.list);
      ASSERT_EQ(shown, plainly(made, filter));
      ResultList whole = made.list.unfiltered();
      EXPECT_FALSE(whole.isFiltered());
      ASSERT_EQ(shownRows(whole).size(), made.list.wholeRowCount());
      EXPECT_EQ(shownRows(whole), std::vector<RowId>(made.list.wholeRows().begin(), made.list.wholeRows().end()));
    }
  }
  made.list.setFilter({});
  EXPECT_EQ(made.list.rowCount(), made.list.wholeRowCount());
  EXPECT_FALSE(made.list.isFiltered());
}

TEST(RowFilter, ATextIsEvaluatedOnceForTheSameRows) {
  GeneratedList made(RowFilling::whole);
  std::size_t asked = 0;
  const TextMatcher matcher([&](std::string_view shown, bool) {
    ++asked;
    return shown.starts_with("TIC") ? std::vector<TextSpan>{{0, 3}} : std::vector<TextSpan>{};
  });
  made.list.setFilter({{}, {{matcher, {{4}, {5}}}}});
  ASSERT_GT(asked, 0U);
  ASSERT_GT(made.list.rowCount(), 0U);
  asked = 0;
  for (std::size_t column = 0; column < GeneratedList::columnCount; ++column)
    EXPECT_FALSE(columnValues(made.list, {column}, {}, 100'000).values.empty());
  RowFilter more = made.list.filter();
  more.columns.push_back({.column = {2}, .values = {text("jose")}});
  made.list.setFilter(more);
  EXPECT_EQ(asked, 0U);
  RowFilter plain{more.columns, {{matcher, {{4}, {5}}}}};
  EXPECT_EQ(shownRows(made.list), plainly(made, plain));
  // What is known of other rows means nothing.
  GeneratedList other(RowFilling::whole, 2);
  asked = 0;
  other.list.setFilter(more);
  EXPECT_GT(asked, 0U);
  EXPECT_EQ(shownRows(other.list), plainly(other, plain));
}

TEST(RowFilter, ShowsTheseRecordsInAnyOrderAndTogetherWithOtherConditions) {
  GeneratedList made(RowFilling::whole);
  const std::set<RowId> chosen = {made.list.rowId({1}), made.list.rowId({4}), made.list.rowId({2})};
  const std::vector<RowId> listed(chosen.begin(), chosen.end());
  const RecordCondition these{"these", matchingOnly(made.list, listed)};
  EXPECT_TRUE(these.isKnownFor(made.list));
  made.list.setFilter({.records = {these}});
  EXPECT_TRUE(made.list.isFiltered());
  for (std::size_t key = 0; key < 6; ++key) {
    made.list.sortBy({key}, SortOrder::descending);
    const std::vector<RowId> shown = shownRows(made.list);
    EXPECT_EQ(shown.size(), chosen.size());
    EXPECT_EQ(std::set<RowId>(shown.begin(), shown.end()), chosen);
  }
  const std::vector<RowId> fewer = {listed[0], listed[2]};
  made.list.setFilter({.records = {these, {"fewer", matchingOnly(made.list, fewer)}}});
  const std::vector<RowId> both = shownRows(made.list);
  EXPECT_EQ(std::set<RowId>(both.begin(), both.end()), std::set<RowId>(fewer.begin(), fewer.end()));
  const ColumnCondition first{.column = {0}, .values = {text(made.shownText(listed[0], 0))}};
  made.list.setFilter({.columns = {first}, .records = {these}});
  ASSERT_GE(made.list.rowCount(), 1U);
  EXPECT_LT(made.list.rowCount(), chosen.size());
  for (const RowId record : shownRows(made.list)) EXPECT_TRUE(meets(made, record, first) && chosen.count(record) == 1);
}

TEST(RowFilter, RecordsOfAnotherStoreOrOfFewerRowsAreNone) {
  const auto store = std::make_shared<RowStore>();
  const std::vector<db::Field> field = {{"No"}};
  store->beginResult(field);
  const std::vector<db::Cell> cell = {{"1", false}};
  const RowId first = store->append(cell);
  ResultList list(RowFilling::whole);
  list.setColumns({{"No", standardColumnWidth, 0}});
  list.setRows(store, {first});
  const RecordCondition these{"these", matchingOnly(list, std::vector<RowId>{first})};
  list.setFilter({.records = {these}});
  EXPECT_EQ(list.rowCount(), 1U);
  list.setFilter({.records = {{"nothing is known", nullptr}}});
  EXPECT_EQ(list.rowCount(), 0U);
  // The answer goes on.
  const RowId second = store->append(cell);
  list.setRows(store, {first, second});
  EXPECT_FALSE(these.isKnownFor(list));
  list.setFilter({.records = {these}});
  EXPECT_EQ(list.rowCount(), 0U);
  list.setRows(test::storeOf({{"1"}}), {{0}});
  EXPECT_FALSE(these.isKnownFor(list));
  list.setFilter({.records = {these}});
  EXPECT_EQ(list.rowCount(), 0U);
  EXPECT_EQ(list.wholeRowCount(), 1U);
  list.clear();
  EXPECT_FALSE(these.isKnownFor(list));
}

TEST(RowFilter, FollowsEntryNumbersThatSortingRewrites) {
  ResultList list(RowFilling::standard);
  list.setColumns({{"No", standardColumnWidth, 0}, {"a", standardColumnWidth, 0}, {"b", standardColumnWidth, 0}});
  list.setRows(test::storeOf({{"007", "x", ""}, {"010", "y", ""}, {"-003", "y", ""}, {"00x", "z", ""}}),
               {{0}, {1}, {2}, {3}});
  const std::vector<RowId> chosen = {{2}, {3}, {0}};
  list.setFilter({{{.column = {0}, .values = {text("007"), text("-003"), text("00x")}}}, {}});
  ASSERT_EQ(list.rowCount(), 3U);
  list.sortBy({0}, SortOrder::ascending);
  const std::vector<RowId> sorted = shownRows(list);
  EXPECT_EQ(std::set<RowId>(sorted.begin(), sorted.end()), std::set<RowId>(chosen.begin(), chosen.end()));
  list.setFilter(RowFilter(list.filter()));
  EXPECT_EQ(shownRows(list), sorted) << "the same filter again";
  RowFilter excluding{{{.column = {0}, .excludes = true, .values = {text("7")}}}, {}};
  list.setFilter(excluding);
  EXPECT_EQ(list.rowCount(), 3U);
}

TEST(RowFilter, OneFilterReplacesAnother) {
  GeneratedList made(RowFilling::whole);
  made.list.setFilter({{{.column = {2}, .values = {text("jose")}}}, {}});
  const RowFilter other{{{.column = {2}, .values = {text("Luca")}}}, {}};
  made.list.setFilter(other);
  EXPECT_EQ(shownRows(made.list), plainly(made, other));
  ASSERT_FALSE(shownRows(made.list).empty());
}

TEST(RowFilter, OtherRowsDropIt) {
  GeneratedList made(RowFilling::whole);
  made.list.setFilter({{{.column = {2}, .values = {text("jose")}}}, {}});
  made.list.setRows(test::storeOf({{"1"}, {"2"}}), {{0}, {1}});
  EXPECT_FALSE(made.list.isFiltered());
  EXPECT_EQ(made.list.rowCount(), 2U);
  made.list.setFilter({{{.column = {0}, .values = {text("2")}}}, {}});
  EXPECT_EQ(made.list.rowCount(), 1U);
  made.list.clear();
  EXPECT_FALSE(made.list.isFiltered());
  EXPECT_EQ(made.list.wholeRowCount(), 0U);
}

TEST(RowFilter, AFilterOfAnEmptyListShowsNothing) {
  ResultList list(RowFilling::whole);
  list.setFilter({{{.column = {0}, .values = {text("2")}}}, {}});
  EXPECT_EQ(list.rowCount(), 0U);
  EXPECT_EQ(list.wholeRowCount(), 0U);
}

}  // namespace
}  // namespace korvel::results
