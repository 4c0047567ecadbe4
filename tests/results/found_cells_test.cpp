#include "results/found_cells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "tests/results/generated_list.h"

namespace korvel::results {
namespace {

using test::GeneratedList;

std::vector<ColumnIndex> allColumns() {
  std::vector<ColumnIndex> columns;
  for (std::size_t i = 0; i < GeneratedList::columnCount; ++i) columns.push_back({i});
  return columns;
}

FoundCells search(const ResultList& list, const TextMatcher& matcher, const std::vector<ColumnIndex>& columns) {
  return {list, std::make_shared<const MatchingCells>(list, matcher, columns)};
}

std::vector<FoundCell> plainly(const GeneratedList& made, const TextMatcher& matcher,
                               const std::vector<ColumnIndex>& columns) {
  std::vector<FoundCell> cells;
  for (std::size_t row = 0; row < made.list.rowCount(); ++row)
    for (std::size_t place = 0; place < columns.size(); ++place)
      if (matcher.matches(made.shownText(made.list.rowId({row}), columns[place].value)))
        cells.push_back({{row}, place});
  return cells;
}

std::vector<FoundCell> oneAfterTheOther(const ResultList& list, const FoundCells& found) {
  std::vector<FoundCell> cells;
  for (auto cell = found.firstFrom({0}); cell; cell = found.next(*cell, SearchDirection::forward)) {
    if (!cells.empty() && *cell <= cells.back()) break;
    cells.push_back(*cell);
    if (cells.size() > list.rowCount() * GeneratedList::columnCount) break;
  }
  return cells;
}

std::vector<TextMatcher> matchers() {
  std::vector<TextMatcher> all;
  for (const std::string text : {"tic-19", "bäuerle", "STRASSE", "2004-02", "00", "1", "7 bar", "😀", "\xFF", "k", "fi",
                                 "ext 1", "nothing has this", " ", "-", "last", "filled"})
    for (const bool exact : {false, true})
      for (const bool whole : {false, true}) all.push_back(TextMatcher(text, {exact, whole}));
  all.push_back(TextMatcher([](std::string_view text, bool) {
    return text.empty() ? std::vector<TextSpan>{{0, 0}} : std::vector<TextSpan>{};
  }));
  return all;
}

TEST(FoundCells, AgreeWithLookingAtEveryCell) {
  for (const RowFilling filling : {RowFilling::standard, RowFilling::whole}) {
    GeneratedList made(filling, 3);
    std::vector<ColumnIndex> columns = allColumns();
    std::reverse(columns.begin(), columns.end());
    for (const bool sorted : {false, true}) {
      if (sorted) made.list.sortBy({0}, SortOrder::descending);
      std::size_t matching = 0;
      for (const TextMatcher& matcher : matchers()) {
        const FoundCells found = search(made.list, matcher, columns);
        const std::vector<FoundCell> expected = plainly(made, matcher, columns);
        ASSERT_EQ(found.count(), expected.size()) << (matcher.needle() == nullptr ? "" : *matcher.needle());
        ASSERT_EQ(oneAfterTheOther(made.list, found), expected);
        if (expected.empty()) continue;
        ++matching;
        EXPECT_EQ(found.numberOf(expected.back()), expected.size());
        EXPECT_EQ(found.numberOf(expected[expected.size() / 2]), expected.size() / 2 + 1);
      }
      EXPECT_GT(matching, 20U);
    }
  }
}

TEST(FoundCells, GoesOnAtTheOtherEnd) {
  GeneratedList made(RowFilling::whole);
  const FoundCells found = search(made.list, TextMatcher("text 1", {}), allColumns());
  const std::vector<FoundCell> cells = plainly(made, TextMatcher("text 1", {}), allColumns());
  ASSERT_GT(cells.size(), 2U);
  EXPECT_EQ(found.next(cells.back(), SearchDirection::forward), cells.front());
  EXPECT_EQ(found.next(cells.front(), SearchDirection::backward), cells.back());
  EXPECT_EQ(found.next(cells[1], SearchDirection::backward), cells[0]);
  EXPECT_EQ(found.firstFrom({made.list.rowCount() - 1})->row >= cells.back().row, true);
  EXPECT_EQ(found.firstFrom(cells[1].row), cells[1]);
}

TEST(FoundCells, TheOnlyOneIsItsOwnNeighbour) {
  GeneratedList made(RowFilling::whole);
  const FoundCells found = search(made.list, TextMatcher("000", {.wholeValue = true}), allColumns());
  ASSERT_EQ(found.count(), 1U);
  const auto only = found.firstFrom({500});
  ASSERT_TRUE(only);
  EXPECT_EQ(found.next(*only, SearchDirection::forward), only);
  EXPECT_EQ(found.next(*only, SearchDirection::backward), only);
}

TEST(FoundCells, NothingIsFoundInAListWithoutRows) {
  ResultList list(RowFilling::whole);
  const FoundCells found = search(list, TextMatcher("a", {}), allColumns());
  EXPECT_EQ(found.count(), 0U);
  EXPECT_FALSE(found.firstFrom({0}));
  EXPECT_FALSE(found.next({{0}, 0}, SearchDirection::backward));
}

TEST(FoundCells, AreMadeFromTheSameCellsUnderSortAndFilter) {
  GeneratedList made(RowFilling::whole);
  const TextMatcher matcher("tic", {});
  const auto cells = std::make_shared<const MatchingCells>(made.list, matcher, allColumns());
  made.list.sortBy({4}, SortOrder::ascending);
  EXPECT_TRUE(cells->areOf(made.list));
  EXPECT_EQ(oneAfterTheOther(made.list, FoundCells(made.list, cells)), plainly(made, matcher, allColumns()));
  made.list.setFilter({.columns = {{.column = {2}, .values = {{"jose", false}}}}, .texts = {}});
  ASSERT_LT(made.list.rowCount(), 3000U);
  EXPECT_TRUE(cells->areOf(made.list));
  const FoundCells found(made.list, cells);
  EXPECT_EQ(oneAfterTheOther(made.list, found), plainly(made, matcher, allColumns()));
  EXPECT_EQ(found.count(), plainly(made, matcher, allColumns()).size());
}

TEST(MatchingCells, BelongToTheRecordsAndTextsThatWereSearched) {
  GeneratedList made(RowFilling::standard);
  GeneratedList other(RowFilling::standard);
  const MatchingCells cells(made.list, TextMatcher("tic", {}), allColumns());
  EXPECT_TRUE(cells.areOf(made.list));
  EXPECT_TRUE(cells.areOf(made.list.recordsOnly()));
  EXPECT_FALSE(cells.areOf(other.list));
  made.list.sortBy({0}, SortOrder::ascending);
  EXPECT_FALSE(cells.areOf(made.list)) << "entry numbers are shown otherwise";
  made.list.clear();
  EXPECT_FALSE(cells.areOf(made.list));
}

TEST(MatchingCells, AreTheSameInAListThatShowsNoRows) {
  GeneratedList made(RowFilling::standard, 3);
  for (const bool sorted : {false, true}) {
    if (sorted) made.list.sortBy({0}, SortOrder::descending);
    const ResultList records = made.list.recordsOnly();
    EXPECT_EQ(records.rowCount(), 0U);
    for (const TextMatcher& matcher : matchers()) {
      const auto cells = std::make_shared<const MatchingCells>(records, matcher, allColumns());
      EXPECT_EQ(oneAfterTheOther(made.list, FoundCells(made.list, cells)), plainly(made, matcher, allColumns()));
    }
  }
}

TEST(MatchingCells, AskNothingMoreOnceAStopIsRequested) {
  GeneratedList made(RowFilling::whole);
  std::stop_source stop;
  int asked = 0;
  constexpr int enough = 700;
  const TextMatcher matcher([&](std::string_view, bool) {
    if (++asked == enough) stop.request_stop();
    return std::vector<TextSpan>{{0, 1}};
  });
  const MatchingCells cells(made.list, matcher, allColumns(), stop.get_token());
  EXPECT_EQ(asked, enough);
}

}  // namespace
}  // namespace korvel::results
