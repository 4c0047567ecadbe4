#include "results/row_store.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <utility>

#include "results/dictionary.h"
#include "tests/results/stored_rows.h"
#include "tests/support/watched_allocations.h"

namespace korvel::results::test {
namespace {

using korvel::test::heldBytes;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr std::size_t blockRows = 4096;

std::string number(std::size_t value) {
  return std::to_string(value);
}

/// A store of one column, filled by a function of the row.
template <typename ValueOfRow>
RowStore oneColumn(std::size_t rows, ValueOfRow valueOfRow) {
  RowStore store;
  store.beginResult(fields(1));
  for (std::size_t row = 0; row < rows; ++row) store.append(cells({Value{valueOfRow(row)}}));
  return store;
}

TEST(RowStore, HoldsNothingAtFirst) {
  const RowStore store;
  EXPECT_EQ(store.rowCount(), 0U);
  EXPECT_EQ(store.columnCount(), 0U);
  EXPECT_EQ(store.widthOf({0}), 0U);
  EXPECT_TRUE(store.fieldsOf({0}).empty());
  EXPECT_TRUE(store.cell({0}, {0}).isNull);
  EXPECT_TRUE(store.ranks({0}, false).empty());
}

TEST(RowStore, KeepsValuesExactlyAsTheyCame) {
  const std::string withNul{"a\0b", 3};
  const std::vector<Row> rows = {{"  padded  ", "", null, "x\ty\r\n"}, {withNul, "Ärger", "漢字😀", "\xFF\xFE"}};
  const auto store = storeOf(rows);
  EXPECT_EQ(rowOf(*store, 0), rows[0]);
  EXPECT_EQ(rowOf(*store, 1), rows[1]);
}

TEST(RowStore, DistinguishesNullFromEmpty) {
  const auto store = storeOf({{null}, {""}, {null}, {"a"}, {""}});
  EXPECT_EQ(valueOf(*store, 0, 0), null);
  EXPECT_EQ(valueOf(*store, 1, 0), "");
  EXPECT_EQ(valueOf(*store, 2, 0), null);
  EXPECT_EQ(valueOf(*store, 4, 0), "");
}

TEST(RowStore, RowsAreNumberedAsTheyArrive) {
  RowStore store;
  store.beginResult(fields(1));
  EXPECT_EQ(store.append(cells({"a"})), RowId{0});
  EXPECT_EQ(store.append(cells({"b"})), RowId{1});
  EXPECT_EQ(store.rowCount(), 2U);
}

TEST(RowStore, BeyondTheEdgesThereIsNull) {
  const auto store = storeOf({{"a", "b"}});
  EXPECT_TRUE(store->cell({0}, {2}).isNull);
  EXPECT_TRUE(store->cell({1}, {0}).isNull);
  EXPECT_EQ(store->widthOf({1}), 0U);
}

TEST(RowStore, ResultSetsMayDifferInWidth) {
  RowStore store;
  addResult(store, {{"1", "one"}, {"2", "two"}});
  addResult(store, {{"a", "b", "c", "d"}});
  addResult(store, {{"z"}});
  addResult(store, {{"e", "f", "g", "h"}});

  EXPECT_EQ(store.columnCount(), 4U);
  EXPECT_EQ(rowOf(store, 1), (Row{"2", "two"}));
  EXPECT_EQ(rowOf(store, 2), (Row{"a", "b", "c", "d"}));
  EXPECT_EQ(rowOf(store, 3), (Row{"z"}));
  EXPECT_EQ(rowOf(store, 4), (Row{"e", "f", "g", "h"}));
  EXPECT_EQ(valueOf(store, 1, 3), null);
  EXPECT_EQ(valueOf(store, 3, 1), null);
}

TEST(RowStore, EachRowHasTheFieldsItCameWith) {
  RowStore store;
  store.beginResult(std::vector<db::Field>{{"Nr", db::ColumnKind::number}});
  store.append(cells({"1"}));
  store.beginResult(std::vector<db::Field>{{"skipped", db::ColumnKind::text}});
  store.beginResult(std::vector<db::Field>{{"Name", db::ColumnKind::text}, {"At", db::ColumnKind::dateTime}});
  store.append(cells({"x", "y"}));

  ASSERT_EQ(store.fieldsOf({0}).size(), 1U);
  EXPECT_EQ(store.fieldsOf({0})[0].name, "Nr");
  ASSERT_EQ(store.fieldsOf({1}).size(), 2U);
  EXPECT_EQ(store.fieldsOf({1})[1].name, "At");
  EXPECT_EQ(store.fieldsOf({1})[1].kind, db::ColumnKind::dateTime);
}

TEST(RowStore, WrongNumbersOfCellsDoNoHarm) {
  RowStore store;
  store.append(cells({"before any result set"}));
  store.beginResult(fields(0));
  store.append({});
  store.beginResult(fields(2));
  store.append(cells({"a"}));
  store.append(cells({"a", "b", "c"}));

  EXPECT_EQ(store.rowCount(), 4U);
  EXPECT_EQ(rowOf(store, 0), Row{});
  EXPECT_EQ(rowOf(store, 1), Row{});
  EXPECT_EQ(rowOf(store, 2), (Row{"a", null}));
  EXPECT_EQ(rowOf(store, 3), (Row{"a", "b"}));
  EXPECT_EQ(store.columnCount(), 2U);
}

TEST(RowStore, LateWideColumnsAreNullInEarlierRows) {
  RowStore store;
  store.beginResult(fields(1));
  const std::size_t narrow = 2 * blockRows + 17;
  for (std::size_t i = 0; i < narrow; ++i) store.append(cells({"n"}));
  addResult(store, {{"w", "last"}});
  EXPECT_EQ(valueOf(store, 0, 1), null);
  EXPECT_EQ(valueOf(store, narrow - 1, 1), null);
  EXPECT_EQ(valueOf(store, narrow, 1), "last");
}

class DistinctValues : public testing::TestWithParam<std::size_t> {};

// Codes grow from one byte to two and four; null takes the first of them.
TEST_P(DistinctValues, SurviveWiderCodes) {
  const std::size_t distinct = GetParam();
  const std::size_t rows = 3 * distinct + 5;
  const RowStore store = oneColumn(rows, [&](std::size_t row) { return number(row % distinct); });
  for (std::size_t row = 0; row < rows; ++row) ASSERT_EQ(valueOf(store, row, 0), number(row % distinct)) << row;
}

TEST_P(DistinctValues, SurviveWiderCodesOneEachBlock) {
  const std::size_t distinct = GetParam();
  // Every value twice in a row, so that the column goes on looking for repeats all the way.
  const std::size_t rows = 2 * distinct + blockRows;
  const auto valueOfRow = [&](std::size_t row) { return number(row / 2 % distinct); };
  const RowStore store = oneColumn(rows, valueOfRow);
  for (std::size_t row = 0; row < rows; ++row) ASSERT_EQ(valueOf(store, row, 0), valueOfRow(row)) << row;
}

INSTANTIATE_TEST_SUITE_P(AroundCodeLimits, DistinctValues,
                         testing::Values(1, 2, 254, 255, 256, 257, 65534, 65535, 65536, 65537, 70000));

TEST(RowStore, StopsLookingForRepeatsAndStaysRight) {
  // Unique values for several blocks, then nothing but one value: both halves read back, and null still is null.
  const std::size_t unique = 5 * blockRows + 3;
  RowStore store = oneColumn(unique, [](std::size_t row) { return "entry " + number(row); });
  const std::size_t before = heldBytes();
  for (std::size_t i = 0; i < 4 * blockRows; ++i) store.append(cells({i % 2 == 0 ? Value{"same"} : null}));

  for (std::size_t row = 0; row < unique; ++row) ASSERT_EQ(valueOf(store, row, 0), "entry " + number(row));
  EXPECT_EQ(valueOf(store, unique, 0), "same");
  EXPECT_EQ(valueOf(store, unique + 1, 0), null);
  // It has stopped: each repeat is stored again, with an address.
  EXPECT_GT(heldBytes(), before + 3 * blockRows * sizeof(char*));
}

TEST(RowStore, KeepsLookingWhileValuesRepeat) {
  const std::size_t rows = 200 * blockRows;
  const std::size_t before = heldBytes();
  const RowStore store = oneColumn(rows, [](std::size_t row) { return "user " + number(row % 200); });
  EXPECT_LT(heldBytes() - before, rows * 5 / 4);  // a byte a row, and little else
}

TEST(RowStore, RepetitiveRowsTakeLessThanTheirText) {
  const std::size_t before = heldBytes();
  RowStore store;
  store.beginResult(fields(4));
  std::size_t textBytes = 0;
  for (std::size_t i = 0; i < 50000; ++i) {
    const Row row = {number(i), "{0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0}", "PC" + number(i % 17), "OA"};
    for (const Value& value : row) textBytes += value->size();
    store.append(cells(row));
  }
  EXPECT_LT(heldBytes() - before, textBytes);
}

TEST(RowStore, FewRowsOfManyColumnsStaySmall) {
  const std::size_t before = heldBytes();
  RowStore store;
  addResult(store, {Row(2000, Value{"x"})});
  EXPECT_LT(heldBytes() - before, std::size_t{16} << 20U);
  EXPECT_EQ(valueOf(store, 0, 1999), "x");
}

// An attacker who knows the hash function can choose values that collide in the table.
TEST(RowStore, ValuesMadeToCollideAreDistinguished) {
  std::vector<std::string> colliding;
  for (std::size_t i = 0; colliding.size() < 400; ++i) {
    const std::string text = number(i);
    if ((hashOfWord(shortTextBits(text)) >> 1U & 0x7FFU) == 5) colliding.push_back(text);
  }
  const std::size_t rows = 3 * blockRows;
  const RowStore store = oneColumn(rows, [&](std::size_t row) { return colliding[row % colliding.size()]; });
  for (std::size_t row = 0; row < rows; ++row) ASSERT_EQ(valueOf(store, row, 0), colliding[row % colliding.size()]);
  const auto ranks = store.ranks({0}, false);
  EXPECT_EQ(ranks[0], ranks[colliding.size()]);
  EXPECT_EQ(*std::max_element(ranks.begin(), ranks.end()), colliding.size());
}

TEST(RowStore, HoldsLongTexts) {
  const std::string first(1 << 20, 'a');
  const std::string second = first.substr(1) + "b";
  const std::vector<Row> rows = {{first, "1"},
                                 {second, "2"},
                                 {first, "3"},
                                 {std::string(127, 'c'), "4"},
                                 {std::string(128, 'c'), "5"},
                                 {std::string(16384, 'd'), "6"},
                                 {"", "7"}};
  const std::size_t before = heldBytes();
  const auto store = storeOf(rows);
  EXPECT_LT(heldBytes() - before, (3U << 20U));  // the repeated one is stored once
  for (std::size_t row = 0; row < rows.size(); ++row) EXPECT_EQ(rowOf(*store, row), rows[row]);
}

TEST(RowStore, TextsStayWhereTheyAre) {
  RowStore store;
  store.beginResult(fields(1));
  store.append(cells({"the first"}));
  const db::Cell first = store.cell({0}, {0});
  for (std::size_t i = 0; i < 100000; ++i) store.append(cells({number(i)}));
  const RowStore moved = std::move(store);
  EXPECT_EQ(moved.cell({0}, {0}).text.data(), first.text.data());
  EXPECT_EQ(first.text, "the first");
}

std::map<std::string, int> visits(const RowStore& store, std::size_t column) {
  std::map<std::string, int> seen;
  store.visitDistinct({column}, [&](std::string_view text) { ++seen[std::string{text}]; });
  return seen;
}

TEST(RowStore, VisitsDistinctTextsOnce) {
  const auto store = storeOf({{"b", null}, {" a", null}, {"b", null}, {null, null}, {"", null}, {"B", null}});
  EXPECT_THAT(visits(*store, 0),
              UnorderedElementsAre(std::pair{"b", 1}, std::pair{" a", 1}, std::pair{"", 1}, std::pair{"B", 1}));
  EXPECT_THAT(visits(*store, 1), ElementsAre());
  EXPECT_THAT(visits(*store, 2), ElementsAre());
}

TEST(RowStore, VisitsEveryTextOfAColumnOfHardlyAnyRepeats) {
  const std::size_t rows = 6 * blockRows;
  const RowStore store = oneColumn(rows, number);
  const auto seen = visits(store, 0);
  ASSERT_EQ(seen.size(), rows);
  EXPECT_TRUE(seen.contains("0"));
  EXPECT_TRUE(seen.contains(number(rows - 1)));
}

TEST(RowStore, VisitsFewTextsOfManyRows) {
  const RowStore store = oneColumn(100000, [](std::size_t row) { return number(row % 3); });
  EXPECT_EQ(visits(store, 0), (std::map<std::string, int>{{"0", 1}, {"1", 1}, {"2", 1}}));
}

}  // namespace
}  // namespace korvel::results::test
