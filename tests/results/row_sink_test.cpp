#include "results/row_sink.h"

#include <gtest/gtest.h>

#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

/// Pushes a result set as a connection does; returns whether the sink accepted all of it.
bool push(RowSink& sink, const std::vector<std::string>& names, const std::vector<Row>& rows) {
  std::vector<db::Field> made;
  for (const std::string& name : names) made.push_back({name, db::ColumnKind::text});
  sink.beginResult(made);
  for (const Row& row : rows)
    if (!sink.row(cells(row))) return false;
  sink.endResult();
  return true;
}

TEST(RowSink, CollectsEveryResultSet) {
  RowSink sink;
  EXPECT_TRUE(push(sink, {"A", "B"}, {{"1", "2"}, {"3", null}}));
  EXPECT_TRUE(push(sink, {"C"}, {}));
  EXPECT_TRUE(push(sink, {"D"}, {{"4"}}));

  EXPECT_EQ(sink.resultCount(), 3U);
  EXPECT_EQ(sink.firstRowOf(0), 0U);
  EXPECT_EQ(sink.firstRowOf(1), 2U);
  EXPECT_EQ(sink.firstRowOf(2), 2U);
  EXPECT_EQ(sink.firstFields().size(), 2U);
  const auto store = sink.takeStore();
  ASSERT_EQ(store->rowCount(), 3U);
  EXPECT_EQ(rowOf(*store, 1), (Row{"3", null}));
  EXPECT_EQ(rowOf(*store, 2), (Row{"4"}));
}

TEST(RowSink, KeepsOnlyTheFirstResultSetOnRequest) {
  RowSink sink{true};
  EXPECT_TRUE(push(sink, {"A"}, {{"1"}, {"2"}}));
  EXPECT_FALSE(push(sink, {"B", "C"}, {{"3", "4"}}));

  EXPECT_EQ(sink.resultCount(), 2U);
  ASSERT_EQ(sink.firstFields().size(), 1U);
  EXPECT_EQ(sink.firstFields()[0].name, "A");
  const auto store = sink.takeStore();
  EXPECT_EQ(store->rowCount(), 2U);
  EXPECT_EQ(store->columnCount(), 1U);
}

TEST(RowSink, TheFirstResultSetCountsEvenWithoutRows) {
  RowSink sink{true};
  EXPECT_TRUE(push(sink, {"A"}, {}));
  EXPECT_FALSE(push(sink, {"B"}, {{"1"}}));
  EXPECT_EQ(sink.firstFields()[0].name, "A");
  EXPECT_EQ(sink.takeStore()->rowCount(), 0U);
}

TEST(RowSink, WithoutAnAnswerHoldsAnEmptyStore) {
  RowSink sink;
  EXPECT_EQ(sink.resultCount(), 0U);
  EXPECT_TRUE(sink.firstFields().empty());
  EXPECT_EQ(sink.takeStore()->rowCount(), 0U);
}

TEST(RowSink, MayBeUsedAgainAfterItsStoreWasTaken) {
  RowSink sink;
  push(sink, {"A"}, {{"1"}});
  const auto first = sink.takeStore();
  push(sink, {"A"}, {{"2"}});
  EXPECT_EQ(rowOf(*first, 0), Row{"1"});
  EXPECT_EQ(rowOf(*sink.takeStore(), 0), Row{"2"});

  RowSink firstOnly{true};
  push(firstOnly, {"A"}, {{"1"}});
  EXPECT_EQ(firstOnly.takeStore()->rowCount(), 1U);
  EXPECT_EQ(firstOnly.resultCount(), 0U);
  EXPECT_TRUE(firstOnly.firstFields().empty());
  EXPECT_TRUE(push(firstOnly, {"B", "C"}, {{"2", "3"}}));
  EXPECT_EQ(firstOnly.resultCount(), 1U);
  ASSERT_EQ(firstOnly.firstFields().size(), 2U);
  EXPECT_EQ(firstOnly.firstFields()[0].name, "B");
  const auto second = firstOnly.takeStore();
  ASSERT_EQ(second->rowCount(), 1U);
  EXPECT_EQ(rowOf(*second, 0), (Row{"2", "3"}));
}

/// A row of three columns: unique, repeating and now and then null, and of very different lengths.
Row rowFor(std::size_t i) {
  const std::size_t length = i % 20000 == 19999 ? 300000 : i % 97;
  return {std::to_string(i), i % 3 == 0 ? null : Value{"user " + std::to_string(i % 40)}, std::string(length, 'x')};
}

// Enough rows for the second thread, several result sets, and texts longer than it takes along with others.
TEST(RowSink, CollectsLongAnswersInTheirOrder) {
  constexpr std::size_t firstRows = 60000;
  constexpr std::size_t secondRows = 30000;
  RowSink sink;
  sink.beginResult(fields(3));
  for (std::size_t i = 0; i < firstRows; ++i) ASSERT_TRUE(sink.row(cells(rowFor(i))));
  sink.endResult();
  EXPECT_EQ(sink.store().rowCount(), firstRows);
  sink.beginResult(fields(1));
  for (std::size_t i = 0; i < secondRows; ++i) ASSERT_TRUE(sink.row(cells({std::to_string(i)})));
  sink.endResult();

  EXPECT_EQ(sink.firstRowOf(1), firstRows);
  const auto store = sink.takeStore();
  ASSERT_EQ(store->rowCount(), firstRows + secondRows);
  for (std::size_t i = 0; i < firstRows; ++i) ASSERT_EQ(rowOf(*store, i), rowFor(i)) << i;
  for (std::size_t i = 0; i < secondRows; ++i) ASSERT_EQ(rowOf(*store, firstRows + i), Row{std::to_string(i)}) << i;
}

TEST(RowSink, ALongAnswerMayBreakOffAnywhere) {
  for (const std::size_t rows : {4095U, 4096U, 4097U, 5120U, 5121U, 40001U}) {
    RowSink sink;
    sink.beginResult(fields(1));
    for (std::size_t i = 0; i < rows; ++i) sink.row(cells({"value"}));
  }
}

}  // namespace
}  // namespace korvel::results::test
