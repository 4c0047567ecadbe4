#include "results/result_list.h"

#include <gmock/gmock.h>

#include <numeric>
#include <random>
#include <set>
#include <utility>

#include "tests/results/stored_rows.h"

namespace korvel::results::test {
namespace {

using testing::ElementsAre;

std::vector<RowId> allRows(const RowStore& store) {
  std::vector<RowId> rows;
  for (std::uint32_t row = 0; row < store.rowCount(); ++row) rows.push_back({row});
  return rows;
}

ResultList listOf(RowFilling filling, std::size_t columns, const std::vector<Row>& rows) {
  ResultList list{filling};
  std::vector<ColumnHeader> headers;
  for (std::size_t i = 0; i < columns; ++i) headers.push_back({"H" + std::to_string(i), standardColumnWidth, 0});
  list.setColumns(std::move(headers));
  const auto store = storeOf(rows);
  list.setRows(store, allRows(*store));
  return list;
}
ResultList customList(const std::vector<Row>& rows) {
  return listOf(RowFilling::whole, rows.empty() ? 2 : rows.front().size(), rows);
}
/// A standard list whose records have a number, a text and the two columns that are not shown.
ResultList standardList(const std::vector<std::pair<std::string, std::string>>& records) {
  std::vector<Row> rows;
  for (const auto& [number, text] : records) rows.push_back({number, text, "comment", "1"});
  return listOf(RowFilling::standard, 4, rows);
}

std::vector<std::string> column(const ResultList& list, std::size_t index) {
  std::vector<std::string> texts;
  for (std::size_t row = 0; row < list.rowCount(); ++row) texts.emplace_back(list.text({row}, {index}));
  return texts;
}

TEST(ResultList, ShowsTextsWithoutBlanksAroundThem) {
  const ResultList list = customList({{"  a b ", null, "   ", "\tx "}});
  EXPECT_EQ(list.text({0}, {0}), "a b");
  EXPECT_EQ(list.text({0}, {1}), "");
  EXPECT_EQ(list.text({0}, {2}), "");
  EXPECT_EQ(list.text({0}, {3}), "\tx");
  // The record itself stays as the server gave it.
  EXPECT_EQ(list.store()->cell(list.rowId({0}), {0}).text, "  a b ");
  EXPECT_TRUE(list.store()->cell(list.rowId({0}), {1}).isNull);
}

/// What visitTexts() brings, each text once, in order.
std::vector<std::string> visited(const ResultList& list, std::size_t column) {
  std::set<std::string> texts;
  list.visitTexts({column}, [&](std::string_view text) { texts.emplace(text); });
  return {texts.begin(), texts.end()};
}

TEST(ResultList, VisitsTheTextsThatItShows) {
  ResultList list = standardList({{" 007", "a "}, {"-012", "b"}, {"10", "a"}});
  EXPECT_THAT(visited(list, 0), ElementsAre("-012", "007", "10"));
  EXPECT_THAT(visited(list, 1), ElementsAre("a", "b"));
  EXPECT_THAT(visited(list, 2), ElementsAre());  // not filled
  EXPECT_THAT(visited(list, 9), ElementsAre());
  list.sort();
  EXPECT_THAT(visited(list, 0), ElementsAre("-12", "10", "7"));
}

TEST(ResultList, VisitsNoTextOfRowsThatItDoesNotShow) {
  const auto store = storeOf({{"1", "short"}, {"2", "very long"}, {"3", null}, {"4", "short"}});
  ResultList list{RowFilling::whole};
  list.setRows(store, {{3}, {0}, {2}});
  EXPECT_THAT(visited(list, 0), ElementsAre("1", "3", "4"));
  EXPECT_THAT(visited(list, 1), ElementsAre("short"));
}

TEST(ResultList, VisitsOnlyRecordsThatFillTheColumn) {
  auto store = std::make_shared<RowStore>();
  addResult(*store, {{"1", "a", "b", "c"}});
  addResult(*store, {{"2", "d", "e"}});
  ResultList list{RowFilling::standard};
  list.setRows(store, {{0}, {1}});
  EXPECT_THAT(visited(list, 0), ElementsAre("1", "2"));
  EXPECT_THAT(visited(list, 1), ElementsAre("a"));
}

TEST(ResultList, VisitsEveryTextOfManyRows) {
  // Running numbers, for which a column stops looking for repeats, and a few texts.
  std::vector<Row> rows;
  for (int i = 0; i < 20000; ++i) rows.push_back({std::to_string(i), std::to_string(i % 7)});
  ResultList list = customList(rows);
  EXPECT_EQ(visited(list, 0).size(), rows.size());
  EXPECT_EQ(visited(list, 1).size(), 7U);
  std::vector<RowId> some;
  for (std::uint32_t row = 1; row < rows.size(); row += 2) some.push_back({row});
  const auto store = storeOf(rows);
  list.setRows(store, some);
  EXPECT_EQ(visited(list, 0).size(), some.size());
  EXPECT_EQ(visited(list, 1).size(), 7U);
}

TEST(ResultList, StandardFillingLeavesTheLastTwoColumnsEmpty) {
  Row record;
  for (int i = 0; i < 18; ++i) record.emplace_back("v" + std::to_string(i));
  const ResultList list = listOf(RowFilling::standard, 18, {record});
  for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(list.text({0}, {i}), "v" + std::to_string(i));
  EXPECT_EQ(list.text({0}, {16}), "");
  EXPECT_EQ(list.text({0}, {17}), "");
}

TEST(ResultList, StandardFillingOfNarrowRecordsKeepsTheItemText) {
  for (std::size_t width = 1; width <= 3; ++width) {
    const ResultList list = listOf(RowFilling::standard, 18, {Row(width, Value{"x"})});
    EXPECT_EQ(list.text({0}, {0}), "x") << width;
    for (std::size_t i = 1; i < 18; ++i) EXPECT_EQ(list.text({0}, {i}), "") << width;
  }
}

TEST(ResultList, WholeFillingShowsEveryColumn) {
  const ResultList list = customList({{"a", "b", "c"}});
  EXPECT_EQ(list.text({0}, {2}), "c");
  EXPECT_EQ(list.text({0}, {3}), "");
}

TEST(ResultList, ThereIsNothingBeyondItsRows) {
  ResultList list = customList({{"a", "b"}});
  EXPECT_EQ(list.text({1}, {0}), "");
  list.clear();
  EXPECT_EQ(list.text({0}, {0}), "");
}

TEST(ResultList, NewColumnsLeaveTheRows) {
  ResultList list = customList({{"a", "b"}});
  list.setColumns({{"only", standardColumnWidth, 0}});
  EXPECT_EQ(list.columns().size(), 1U);
  EXPECT_THAT(column(list, 0), ElementsAre("a"));
}

TEST(ResultList, ClearingKeepsHeadersKeyAndOrder) {
  ResultList list = customList({{"a", "b"}});
  list.sortBy({1}, SortOrder::descending);
  list.clear();
  EXPECT_EQ(list.rowCount(), 0U);
  EXPECT_EQ(list.store(), nullptr);
  EXPECT_EQ(list.columns().size(), 2U);
  EXPECT_EQ(list.sortKey(), ColumnIndex{1});
  EXPECT_EQ(list.sortOrder(), SortOrder::descending);
  EXPECT_TRUE(list.isSorted());
}

TEST(ResultList, UnsortedRowsStayAsTheyCame) {
  const ResultList list = standardList({{"9", "x"}, {"1", "y"}, {"05", "z"}});
  EXPECT_FALSE(list.isSorted());
  EXPECT_THAT(column(list, 0), ElementsAre("9", "1", "05"));
}

TEST(ResultList, EntryNumbersOrderByValueAndLoseTheirZeros) {
  ResultList list = standardList({{"10", "a"}, {"007", "b"}, {"000", "c"}, {"", "d"}, {" 9 ", "e"}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("", "0", "7", "9", "10"));
  EXPECT_THAT(column(list, 1), ElementsAre("d", "c", "b", "e", "a"));
}

TEST(ResultList, EntryNumbersBelowZeroLoseTheirZerosToo) {
  ResultList list = standardList({{"2", "a"}, {"-010", "b"}, {" -007 ", "c"}, {"-000", "d"}, {"", "e"}, {"-3", "f"}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("", "-3", "-7", "-10", "0", "2"));
  EXPECT_THAT(column(list, 1), ElementsAre("e", "f", "c", "b", "d", "a"));
  list.sortBy({1}, SortOrder::descending);
  EXPECT_THAT(column(list, 0), ElementsAre("-3", "", "0", "-7", "-10", "2"));
  // The rows of the next answer are shown as they came, whatever stood in their places.
  list.setRows(storeOf({{"1", "x", "c", "0"}, {"-010", "y", "c", "0"}}), {{0}, {1}});
  EXPECT_THAT(column(list, 0), ElementsAre("-010", "1"));
}

TEST(ResultList, EntryNumbersBelowZeroAreFoundBehindOtherTexts) {
  ResultList list = standardList({{"-01", "a"}, {"+1", "b"}, {"*", "c"}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("*", "+1", "-1"));
}

TEST(ResultList, OtherItemTextsStayAsTheyAre) {
  ResultList list = standardList({{"0x1F", "a"}, {"-7", "b"}, {"00A", "c"}, {"0.5", "d"}, {"-0.5", "e"}, {"-0A", "f"}});
  list.sort();
  EXPECT_THAT(column(list, 0), testing::UnorderedElementsAre("0x1F", "-7", "00A", "0.5", "-0.5", "-0A"));
}

TEST(ResultList, RewrittenEntryNumbersStayRewritten) {
  ResultList list = standardList({{"007", "b"}, {"010", "a"}});
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("010", "007"));  // not yet ordered by number
  list.sortBy({0}, SortOrder::ascending);
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("10", "7"));
}

TEST(ResultList, OnlyEntryNumbersLoseTheirZeros) {
  ResultList list = standardList({{"2", "007"}, {"1", "000"}});
  list.sort();
  EXPECT_THAT(column(list, 1), ElementsAre("000", "007"));
}

TEST(ResultList, CustomListsShowWhatTheServerSent) {
  ResultList list = customList({{"010", "a"}, {"007", "b"}, {"9", "c"}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("007", "9", "010"));
}

TEST(ResultList, OtherColumnsOrderAsTexts) {
  ResultList list = standardList({{"1", "10"}, {"2", "9"}, {"3", "b"}, {"4", "A"}});
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 1), ElementsAre("10", "9", "A", "b"));
}

TEST(ResultList, ColumnsThatAreNotShownDoNotOrderAnything) {
  ResultList list = listOf(RowFilling::standard, 4, {{"1", "x", "b", "b"}, {"2", "y", "a", "a"}});
  list.sortBy({2}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("1", "2"));
  list.sortBy({3}, SortOrder::descending);
  EXPECT_THAT(column(list, 0), ElementsAre("1", "2"));
}

TEST(ResultList, RowsOfNarrowerRecordsOrderAsEmptyWhereNothingIsShown) {
  const auto store = [] {
    auto made = std::make_shared<RowStore>();
    addResult(*made, {{"1", "b", "c", "0"}});
    addResult(*made, {{"2", "hidden", "0"}, {"3", "hidden", "0"}});
    addResult(*made, {{"4", "", "c", "0"}, {"5", "a", "c", "0"}});
    return made;
  }();
  ResultList list{RowFilling::standard};
  list.setColumns(std::vector<ColumnHeader>(4));
  list.setRows(store, allRows(*store));
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("2", "3", "4", "5", "1"));
}

TEST(ResultList, EqualTextsKeepTheOrderInWhichTheyStand) {
  const std::vector<Row> rows = {{"1", "b"}, {"2", "a"}, {"3", "B"}, {"4", "A"}, {"5", "b"}};
  ResultList list = customList(rows);
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("2", "4", "1", "3", "5"));
  list.sortBy({1}, SortOrder::descending);
  EXPECT_THAT(column(list, 0), ElementsAre("1", "3", "5", "2", "4"));
  list.sortBy({0}, SortOrder::descending);
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 0), ElementsAre("4", "2", "5", "3", "1"));
}

TEST(ResultList, AListOfFewRowsOfALargeStoreSortsThemAlone) {
  std::vector<Row> rows;
  for (int i = 0; i < 40000; ++i) rows.push_back({std::to_string(40000 - i), i % 2 == 0 ? "even" : "odd"});
  const auto store = storeOf(rows);
  ResultList list{RowFilling::whole};
  list.setColumns(std::vector<ColumnHeader>(2));
  list.setRows(store, {{30000}, {1}, {20001}, {7}, {7}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("10000", "19999", "39993", "39993", "39999"));
  list.sortBy({0}, SortOrder::descending);
  EXPECT_THAT(column(list, 0), ElementsAre("39999", "39993", "39993", "19999", "10000"));
  list.sortBy({1}, SortOrder::ascending);
  EXPECT_THAT(column(list, 1), ElementsAre("even", "odd", "odd", "odd", "odd"));
  EXPECT_THAT(column(list, 0), ElementsAre("10000", "39999", "39993", "39993", "19999"));
}

TEST(ResultList, NewRowsOfASortedListAreSortedAtOnce) {
  ResultList list = standardList({});
  list.sort();
  const auto store = storeOf({{"10", "a", "c", "0"}, {"09", "b", "c", "0"}});
  list.setRows(store, allRows(*store));
  EXPECT_THAT(column(list, 0), ElementsAre("9", "10"));
}

TEST(ResultList, NewRowsShowTheirZerosUntilTheyAreOrderedByNumber) {
  ResultList list = standardList({{"1", "x"}});
  list.sort();
  list.sortBy({1}, SortOrder::ascending);
  const auto store = storeOf({{"010", "b", "c", "0"}, {"009", "a", "c", "0"}});
  list.setRows(store, allRows(*store));
  EXPECT_THAT(column(list, 0), ElementsAre("009", "010"));
}

TEST(ResultList, AListWithoutAStoreHasNoRows) {
  ResultList list{RowFilling::whole};
  list.setRows(nullptr, {{0}, {1}});
  EXPECT_EQ(list.rowCount(), 0U);
  list.sort();
  EXPECT_TRUE(list.isSorted());
}

TEST(ColumnClick, OnAnotherColumnSortsItAscending) {
  ResultList list = standardList({{"1", "b"}, {"2", "a"}});
  list.clickColumn({1});
  EXPECT_EQ(list.sortKey(), ColumnIndex{1});
  EXPECT_EQ(list.sortOrder(), SortOrder::ascending);
  EXPECT_EQ(list.columns()[1].tag, 0);
  EXPECT_THAT(column(list, 1), ElementsAre("a", "b"));
}

TEST(ColumnClick, ASecondClickReversesAndAThirdReversesAgain) {
  ResultList list = standardList({{"1", "b"}, {"2", "c"}, {"3", "a"}});
  list.clickColumn({1});
  list.clickColumn({1});
  EXPECT_EQ(list.columns()[1].tag, -1);
  EXPECT_EQ(list.sortOrder(), SortOrder::descending);
  EXPECT_THAT(column(list, 1), ElementsAre("c", "b", "a"));
  list.clickColumn({1});
  EXPECT_EQ(list.columns()[1].tag, 0);
  EXPECT_THAT(column(list, 1), ElementsAre("a", "b", "c"));
}

// The entry number is the sort key of a fresh list, so already the first click on it inverts its direction.
TEST(ColumnClick, TheFirstOnEntryNumbersReversesThem) {
  ResultList list = standardList({{"7", "a"}, {"10", "b"}});
  list.sort();
  EXPECT_THAT(column(list, 0), ElementsAre("7", "10"));
  list.clickColumn({0});
  EXPECT_EQ(list.columns()[0].tag, -1);
  EXPECT_THAT(column(list, 0), ElementsAre("10", "7"));
}

TEST(ColumnClick, EachColumnRemembersItsDirection) {
  ResultList list = standardList({{"1", "b"}, {"2", "a"}});
  list.clickColumn({1});
  list.clickColumn({1});  // descending now
  list.clickColumn({0});
  EXPECT_EQ(list.sortOrder(), SortOrder::ascending);
  list.clickColumn({1});  // not the sort key: by its own tag, which stays
  EXPECT_EQ(list.columns()[1].tag, -1);
  EXPECT_EQ(list.sortOrder(), SortOrder::descending);
  EXPECT_THAT(column(list, 1), ElementsAre("b", "a"));
}

TEST(ColumnClick, ShowsItsDirectionOnThatColumnAlone) {
  ResultList list = standardList({{"1", "b"}, {"2", "a"}});
  const auto icons = [&] {
    std::vector<HeaderIcon> all;
    for (std::size_t i = 0; i < 4; ++i) all.push_back(list.headerIcon({i}));
    return all;
  };
  constexpr HeaderIcon none = HeaderIcon::none;
  EXPECT_THAT(icons(), ElementsAre(none, none, none, none));
  list.clickColumn({1});
  EXPECT_THAT(icons(), ElementsAre(none, HeaderIcon::ascending, none, none));
  list.clickColumn({1});
  EXPECT_THAT(icons(), ElementsAre(none, HeaderIcon::descending, none, none));
  list.clickColumn({2});
  EXPECT_THAT(icons(), ElementsAre(none, none, HeaderIcon::ascending, none));
}

TEST(ColumnClick, BesideTheHeadersIsIgnored) {
  ResultList list = standardList({{"2", "b"}, {"1", "a"}});
  list.clickColumn({4});
  EXPECT_FALSE(list.isSorted());
  EXPECT_EQ(list.sortKey(), ColumnIndex{0});
  EXPECT_THAT(column(list, 0), ElementsAre("2", "1"));
}

TEST(ColumnClick, WorksOnAListWithoutRows) {
  ResultList list = standardList({});
  list.clickColumn({2});
  EXPECT_EQ(list.headerIcon({2}), HeaderIcon::ascending);
}

TEST(SortBy, SetsTheDirectionThatTheNextClickInverts) {
  ResultList list = standardList({{"1", "b"}, {"2", "a"}});
  list.sortBy({1}, SortOrder::descending);
  EXPECT_EQ(list.columns()[1].tag, -1);
  list.clickColumn({1});
  EXPECT_EQ(list.sortOrder(), SortOrder::ascending);
}

TEST(SortBy, AColumnThatDoesNotExistKeepsTheOrder) {
  ResultList list = customList({{"b"}, {"a"}});
  list.sortBy({9}, SortOrder::descending);
  EXPECT_THAT(column(list, 0), ElementsAre("b", "a"));
}

TEST(RecordCount, IsTheNumberAndTheLabel) {
  EXPECT_EQ(recordCountText(125, "Records on current tab"), "125 Records on current tab");
  EXPECT_EQ(recordCountText(standardList({}).rowCount(), "Records on current tab"), "0 Records on current tab");
}

}  // namespace
}  // namespace korvel::results::test
