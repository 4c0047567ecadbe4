#include "evidence/trail_comparison.h"

#include <gmock/gmock.h>

#include "base/error.h"

namespace korvel::evidence {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = RowDifference::Kind;
using Row = std::vector<std::string>;

std::vector<Row> numberedRows(int count) {
  std::vector<Row> rows;
  for (int i = 1; i <= count; ++i)
    rows.push_back({std::to_string(i), "2004-03-07 " + std::to_string(1000000 + i), "value " + std::to_string(i)});
  return rows;
}

RowStream::Source sourceOf(std::vector<Row> rows, std::vector<std::string> names = {"Nr", "DateTime", "Value"}) {
  return [rows = std::move(rows), names = std::move(names)](db::ResultSink& sink, const std::stop_token&) {
    std::vector<db::Field> fields;
    for (const std::string& name : names) fields.push_back({name});
    sink.beginResult(fields);
    for (const Row& row : rows) {
      std::vector<db::Cell> cells;
      for (const std::string& value : row) cells.push_back({value, value == "NULL"});
      if (!sink.row(cells)) return;
    }
    sink.endResult();
  };
}

TrailComparison compared(const std::vector<Row>& before, const std::vector<Row>& now,
                         std::optional<std::int64_t> last = std::int64_t{1} << 40U) {
  RowStream earlier(sourceOf(before));
  RowStream later(sourceOf(now));
  return compareTrails(earlier, later, last);
}

/// "changed 5 Value: value 5 -> x", one a difference.
std::vector<std::string> textsOf(const TrailComparison& found) {
  std::vector<std::string> texts;
  const std::vector<std::string> names = {"changed", "removed", "inserted", "renumbered", "exchanged"};
  for (const RowDifference& difference : found.differences) {
    std::string text = names.at(static_cast<std::size_t>(difference.kind));
    text += difference.number ? " " + std::to_string(*difference.number) : " without number";
    if (difference.otherNumber) text += " " + std::to_string(*difference.otherNumber);
    if (difference.kind == Kind::changed)
      for (const ValueChange& value : difference.values)
        text += " " + value.column + ": " + value.before.value_or("null") + " -> " + value.now.value_or("null");
    texts.push_back(text);
  }
  return texts;
}

constexpr int manyRows = 100000;

TEST(TrailComparison, OfTheSameRowsFindsNothing) {
  const TrailComparison found = compared(numberedRows(manyRows), numberedRows(manyRows));
  EXPECT_TRUE(found.isUnchanged());
  EXPECT_EQ(found.same, manyRows);
  EXPECT_EQ(found.rowsBefore, manyRows);
  EXPECT_EQ(found.rowsNow, manyRows);
  EXPECT_EQ(found.gaps + found.repeatedNumbers + found.clockSteps, 0U);
  EXPECT_THAT(found.differences, IsEmpty());
}

TEST(TrailComparison, NamesTheChangedRowAmongManyWithItsValues) {
  std::vector<Row> now = numberedRows(manyRows);
  now[54320][2] = "x";
  const TrailComparison found = compared(numberedRows(manyRows), now);
  EXPECT_THAT(textsOf(found), ElementsAre("changed 54321 Value: value 54321 -> x"));
  EXPECT_EQ(found.changed, 1U);
  EXPECT_EQ(found.same, manyRows - 1U);
}

TEST(TrailComparison, NamesTheRemovedRowAmongMany) {
  std::vector<Row> now = numberedRows(manyRows);
  now.erase(now.begin() + 4095);
  const TrailComparison found = compared(numberedRows(manyRows), now);
  EXPECT_THAT(textsOf(found), ElementsAre("removed 4096"));
  EXPECT_EQ(found.differences[0].values[2].before, "value 4096");
  EXPECT_EQ(found.gaps, 1U);
  EXPECT_EQ(found.missingNumbers, 1U);
}

TEST(TrailComparison, NamesTheInsertedRowAmongMany) {
  std::vector<Row> before = numberedRows(manyRows);
  before.erase(before.begin() + 99998);
  const TrailComparison found = compared(before, numberedRows(manyRows));
  EXPECT_THAT(textsOf(found), ElementsAre("inserted 99999"));
  EXPECT_EQ(found.differences[0].values[2].now, "value 99999");
}

TEST(TrailComparison, NamesRowsThatWereExchangedAmongMany) {
  std::vector<Row> now = numberedRows(manyRows);
  std::swap(now[10][1], now[90000][1]);
  std::swap(now[10][2], now[90000][2]);
  const TrailComparison found = compared(numberedRows(manyRows), now);
  EXPECT_THAT(textsOf(found), ElementsAre("exchanged 11 90001", "exchanged 90001 11"));
  EXPECT_EQ(found.changed, 2U);
}

TEST(TrailComparison, NamesTheRenumberedRowWhereverItWent) {
  std::vector<Row> before = numberedRows(manyRows);
  before.erase(before.begin() + 499);  // number 500 is free
  std::vector<Row> now = before;
  now[10][0] = "500";
  std::rotate(now.begin() + 10, now.begin() + 11, now.begin() + 499);
  EXPECT_THAT(textsOf(compared(before, now)), ElementsAre("renumbered 11 500"));
  // To the end, where it looks newer.
  now = before;
  now[10][0] = "200000";
  std::rotate(now.begin() + 10, now.begin() + 11, now.end());
  EXPECT_THAT(textsOf(compared(before, now, manyRows)), ElementsAre("renumbered 11 200000"));
  // Up, where the inserted row comes first.
  now = before;
  now[600][0] = "500";
  std::rotate(now.begin() + 499, now.begin() + 600, now.begin() + 601);
  EXPECT_THAT(textsOf(compared(before, now)), ElementsAre("renumbered 602 500"));
}

TEST(TrailComparison, NewerRowsAreNoDifference) {
  const TrailComparison found = compared(numberedRows(10), numberedRows(15), 10);
  EXPECT_TRUE(found.isUnchanged());
  EXPECT_EQ(found.newer, 5U);
  // A number that the earlier trail could have had makes an inserted row, also behind its last one.
  EXPECT_EQ(compared(numberedRows(10), numberedRows(15), 12).inserted, 2U);
}

TEST(TrailComparison, PairsRowsOfOneNumberWhateverTheirOrder) {
  const std::vector<Row> before = {
      {"NULL", "t", "n"}, {"1", "t", "a"}, {"1", "t", "b"}, {"1", "t", "b"}, {"2", "t", "c"}};
  EXPECT_TRUE(compared(before, {before[0], before[3], before[1], before[2], before[4]}).isUnchanged());
  const TrailComparison found = compared(before, {before[3], before[1], before[4]});
  EXPECT_THAT(textsOf(found), ElementsAre("removed without number", "removed 1"));
  EXPECT_EQ(found.same, 3U);
  EXPECT_EQ(found.repeatedNumbers, 1U);
  EXPECT_THAT(textsOf(compared(before, {before[0], before[1], {"1", "t", "x"}, before[2], before[4]})),
              ElementsAre("changed 1 Value: b -> x"));
}

TEST(TrailComparison, TellsNullFromEmpty) {
  EXPECT_THAT(textsOf(compared({{"1", "t", "NULL"}}, {{"1", "t", ""}})), ElementsAre("changed 1 Value: null -> "));
}

TEST(TrailComparison, SeesGapsRepeatsAndStepsOfTheClock) {
  const std::vector<Row> rows = {{"1", "2004-03-07 10:00", ""}, {"5", "2004-03-07 11:00", ""},
                                 {"5", "2004-03-07 11:00", ""}, {"5", "2004-03-07 11:00", ""},
                                 {"6", "2004-03-07 10:30", ""}, {"7", "NULL", ""},
                                 {"8", "2004-03-07 10:20", ""}};
  const TrailComparison found = compared(rows, rows);
  EXPECT_TRUE(found.isUnchanged());
  EXPECT_EQ(found.gaps, 1U);
  EXPECT_EQ(found.missingNumbers, 3U);
  EXPECT_EQ(found.repeatedNumbers, 1U);
  EXPECT_EQ(found.clockSteps, 2U);
  ASSERT_EQ(found.oddities.size(), 4U);
  EXPECT_EQ(found.oddities[0].number, 2);
  EXPECT_EQ(found.oddities[0].last, 4);
  EXPECT_EQ(found.oddities[1].number, 5);
  EXPECT_EQ(found.oddities[2].before, "2004-03-07 11:00");
  EXPECT_EQ(found.oddities[2].now, "2004-03-07 10:30");
  EXPECT_EQ(found.oddities[3].number, 8);
}

TEST(TrailComparison, NamesTheFirstThousandAndCountsAll) {
  std::vector<Row> now = numberedRows(5000);
  for (Row& row : now) row[2] = "x";
  const TrailComparison found = compared(numberedRows(5000), now);
  EXPECT_EQ(found.changed, 5000U);
  EXPECT_EQ(found.differences.size(), TrailComparison::mostNamed);
}

TEST(TrailComparison, ComparesByTheNamesOfColumns) {
  RowStream before(sourceOf({{"1", "a", "b"}}, {"Nr", "One", "Two"}));
  RowStream now(sourceOf({{"b", "1", "c"}}, {"two", "nr", "Three"}));
  const TrailComparison found = compareTrails(before, now, 1);
  EXPECT_EQ(found.same, 1U);
  EXPECT_THAT(found.columnsGone, ElementsAre("One"));
  EXPECT_THAT(found.columnsNew, ElementsAre("Three"));
  EXPECT_FALSE(found.isUnchanged());
}

TEST(TrailComparison, OfAnEmptyTrailRemovesAll) {
  EXPECT_EQ(compared(numberedRows(3), {}).removed, 3U);
  EXPECT_EQ(compared({}, numberedRows(3), std::nullopt).newer, 3U);
  EXPECT_TRUE(compared({}, {}).isUnchanged());
}

TEST(TrailComparison, PassesOnAFailureOfEitherSide) {
  const RowStream::Source broken = [](db::ResultSink& sink, const std::stop_token& stop) {
    sourceOf(numberedRows(5000))(sink, stop);
    throw Error(7, "broken");
  };
  for (const bool isEarlier : {true, false}) {
    RowStream before(isEarlier ? broken : sourceOf(numberedRows(9000)));
    RowStream now(isEarlier ? sourceOf(numberedRows(9000)) : broken);
    EXPECT_THROW((void)compareTrails(before, now, 9000), Error);
  }
}

TEST(TrailComparison, ASecondResultWithOtherColumnsIsRefused) {
  RowStream before([](db::ResultSink& sink, const std::stop_token& stop) {
    sourceOf(numberedRows(3))(sink, stop);
    sourceOf({{"4"}}, {"Nr"})(sink, stop);
  });
  RowStream now(sourceOf(numberedRows(4)));
  EXPECT_THROW((void)compareTrails(before, now, 4), Error);
}

TEST(TrailComparison, NumbersThatAreNoneAreRefused) {
  EXPECT_THROW((void)compared({{"x", "", ""}}, {}), Error);
  RowStream before(sourceOf({{"1"}}, {"Number"}));
  RowStream now(sourceOf({{"1"}}, {"Nr"}));
  EXPECT_THROW((void)compareTrails(before, now, 1), Error);
}

TEST(TrailComparison, EndsWhereProgressThrows) {
  struct Enough {};
  RowStream before(sourceOf(numberedRows(manyRows)));
  RowStream now(sourceOf(numberedRows(manyRows)));
  EXPECT_THROW((void)compareTrails(before, now, manyRows, [](std::uint64_t) { throw Enough{}; }), Enough);
}

}  // namespace
}  // namespace korvel::evidence
