#include "query/item_history.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "query/audit_record.h"
#include "tests/results/stored_rows.h"

namespace korvel::query {
namespace {

using results::ResultList;
using results::RowFilling;
using results::RowId;
using results::test::Row;
using results::test::Value;

/// What a test writes down of an audit record.
struct Written {
  std::string number;
  std::string time;
  std::string item;
  Value oldValue;
  Value newValue;
  std::string area = "Operation";
};

Row rowOf(const Written& written) {
  Row row(auditColumnCount, Value(""));
  row[0] = written.number;
  row[1] = written.time;
  row[2] = "{guid}";
  row[3] = "Plant";
  row[5] = written.area;
  row[6] = "Setpoint";
  row[8] = written.item;
  row[9] = written.oldValue;
  row[10] = written.newValue;
  return row;
}

std::unique_ptr<ResultList> listOf(const std::vector<Written>& written) {
  auto list = std::make_unique<ResultList>(RowFilling::standard);
  setUpAuditColumns(*list);
  std::vector<Row> rows;
  std::vector<RowId> ids;
  for (const Written& each : written) {
    ids.push_back({static_cast<std::uint32_t>(rows.size())});
    rows.push_back(rowOf(each));
  }
  list->setRows(results::test::storeOf(rows), ids);
  return list;
}

std::string told(const ItemHistory& history) {
  std::string text;
  for (const ItemChange& change : history.changes)
    text.append(change.continues ? " " : " !").append(change.oldValue).append(">").append(change.newValue);
  return text;
}

TEST(ItemHistory, IsInTheOrderOfTimeAndMarksWhatDoesNotContinue) {
  const auto list = listOf({{"10", "2004-03-07 03:00:00", "TIC-1", "2 bar", "3 bar"},
                            {"2", "2004-03-07 01:00:00", "TIC-1", "1 bar", "2 bar"},
                            {"3", "2004-03-07 02:00:00", "TIC-2", "7 bar", "8 bar"},
                            {"11", "2004-03-08 03:00:00", "TIC-1", "4 bar", "5 bar"},
                            {"12", "2004-03-08 03:00:00", "TIC-1", "5 bar", "6 bar", "Limits"}});
  const auto columns = itemColumns(*list);
  ASSERT_TRUE(columns);
  EXPECT_EQ(told(itemHistory(*list, *columns, {0})), " 1 bar>2 bar 2 bar>3 bar !4 bar>5 bar");
  EXPECT_EQ(told(itemHistory(*list, *columns, {2})), " 7 bar>8 bar");
  EXPECT_EQ(told(itemHistory(*list, *columns, {4})), " 5 bar>6 bar");
}

TEST(ItemHistory, RowsOfOneMomentGoByTheirNumbers) {
  const std::string moment = "2004-03-07 03:00:00";
  const auto list = listOf({{"10", moment, "A", "b", "c"},
                            {"9", moment, "A", "a", "b"},
                            {"x", moment, "A", "d", "e"},
                            {"0011", moment, "A", "c", "d"},
                            {"-5", moment, "A", "", "a"}});
  EXPECT_EQ(told(itemHistory(*list, *itemColumns(*list), {0})), " >a a>b b>c c>d d>e");
}

/// In autumn an hour comes twice; the column T1 tells which is which.
TEST(ItemHistory, TheHourThatComesTwiceIsInTheOrderOfTime) {
  std::vector<Row> rows = {
      rowOf({"3", "2003-10-26 02:15:00", "A", "c", "d"}), rowOf({"1", "2003-10-26 02:15:00", "A", "a", "b"}),
      rowOf({"4", "2003-10-26 02:45:00", "A", "d", "e"}), rowOf({"2", "2003-10-26 02:45:00", "A", "b", "c"}),
      rowOf({"5", "2003-10-26 03:05:00", "A", "e", "f"})};
  const std::vector<std::string> summerTime = {"0", "1", "0", "1", "0"};
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i][17] = summerTime[i];
  ResultList list(RowFilling::standard);
  setUpAuditColumns(list);
  list.setRows(results::test::storeOf(rows), {{0}, {1}, {2}, {3}, {4}});
  EXPECT_EQ(told(itemHistory(list, *itemColumns(list), {0})), " a>b b>c c>d d>e e>f");
}

/// A record of several categories is several rows, of one record or of equal ones.
TEST(ItemHistory, ARecordThatIsSeveralRowsHappenedOnce) {
  const Written first{"1", "2004-03-07 01:00:00", "A", "1", "2"};
  const Written second{"2", "2004-03-07 02:00:00", "A", "2", "3"};
  ResultList list(RowFilling::standard);
  setUpAuditColumns(list);
  list.setRows(results::test::storeOf({rowOf(first), rowOf(second), rowOf(first)}), {{0}, {1}, {2}, {1}});
  EXPECT_EQ(told(itemHistory(list, *itemColumns(list), {0})), " 1>2 2>3");
}

TEST(ItemHistory, HasRowsThatAFilterHides) {
  const auto list = listOf({{"1", "2004-03-07 01:00:00", "A", "1", "2"}, {"2", "2004-03-07 02:00:00", "A", "2", "3"}});
  list->setFilter({{{.column = {0}, .values = {{"2", false}}}}, {}});
  ASSERT_EQ(list->rowCount(), 1U);
  EXPECT_EQ(told(itemHistory(*list, *itemColumns(*list), {1})), " 1>2 2>3");
}

TEST(ItemHistory, NullAndEmptyNameTheSameItem) {
  std::vector<Row> rows = {rowOf({"1", "2004-03-07 01:00:00", "", "1", "2"}),
                           rowOf({"2", "2004-03-07 02:00:00", "", "2", "3"})};
  rows[1][8] = results::test::null;
  ResultList list(RowFilling::standard);
  setUpAuditColumns(list);
  list.setRows(results::test::storeOf(rows), {{0}, {1}});
  EXPECT_EQ(told(itemHistory(list, *itemColumns(list), {1})), " 1>2 2>3");
}

/// They may be about several things.
TEST(ItemHistory, OfRecordsWithoutAnItemIdNothingContinuesAndNothingIsPlotted) {
  const auto list = listOf({{"1", "2004-03-07 01:00:00", "", "1", "2"},
                            {"2", "2004-03-07 02:00:00", "", "7", "8"},
                            {"3", "2004-03-07 01:00:00", "A", "1", "2"},
                            {"4", "2004-03-07 02:00:00", "A", "7", "8"}});
  const ItemHistory nameless = itemHistory(*list, *itemColumns(*list), {0});
  EXPECT_FALSE(nameless.namesItem());
  EXPECT_FALSE(nameless.isNumeric);
  EXPECT_EQ(told(nameless), " 1>2 7>8") << "nothing is missing between different things";
  const ItemHistory named = itemHistory(*list, *itemColumns(*list), {2});
  EXPECT_TRUE(named.namesItem());
  EXPECT_TRUE(named.isNumeric);
  EXPECT_EQ(told(named), " 1>2 !7>8");
}

TEST(ItemHistory, SeveralItemsHaveTheirOwnHistories) {
  const auto list = listOf({{"1", "2004-03-07 01:00:00", "A", "1", "2"},
                            {"2", "2004-03-07 02:00:00", "B", "9", "8"},
                            {"3", "2004-03-07 03:00:00", "A", "2", "3", "Limits"},
                            {"4", "2004-03-07 04:00:00", "A", "2", "3"}});
  const auto columns = *itemColumns(*list);
  const std::vector<ItemHistory> histories =
      itemHistories(*list, columns, {{{.column = columns.identity[4], .values = {{"A", false}}}}, {}});
  ASSERT_EQ(histories.size(), 2U);
  EXPECT_EQ(histories[0].identity[2], "Limits");
  EXPECT_EQ(told(histories[0]), " 2>3");
  EXPECT_EQ(told(histories[1]), " 1>2 2>3");
  EXPECT_EQ(itemHistories(*list, columns, {}).size(), 3U);
}

TEST(ItemHistory, IsNumericWhereAllValuesHaveOneUnit) {
  const auto isNumeric = [](Value first, Value second) {
    const auto list = listOf({{"1", "2004-03-07 01:00:00", "A", first, second}});
    return itemHistory(*list, *itemColumns(*list), {0}).isNumeric;
  };
  EXPECT_TRUE(isNumeric("9.14 bar", "1 bar"));
  EXPECT_TRUE(isNumeric("", "1"));
  EXPECT_TRUE(isNumeric(results::test::null, "1"));
  EXPECT_FALSE(isNumeric("9.14 bar", "1 mbar"));
  EXPECT_FALSE(isNumeric("9.14 bar", "open"));
  EXPECT_FALSE(isNumeric("open", "1"));
  EXPECT_FALSE(isNumeric("", ""));
}

TEST(ItemColumns, AreFoundByCaptionOrName) {
  ResultList list(RowFilling::whole);
  std::vector<results::ColumnHeader> headers;
  for (const std::string name :
       {"newvalue", "Old Value", "DateTime", "NR", "Item ID", "FieldName", "Area", "Database Name", "ProjectGUID"})
    headers.push_back({name, results::standardColumnWidth, 0});
  list.setColumns(headers);
  const auto columns = itemColumns(list);
  ASSERT_TRUE(columns);
  EXPECT_EQ(columns->newValue.value, 0U);
  EXPECT_EQ(columns->identity[0].value, 8U);
  EXPECT_EQ(columns->identity[4].value, 4U);
  headers.pop_back();
  list.setColumns(headers);
  EXPECT_FALSE(itemColumns(list));
}

TEST(Quantity, IsANumberAndWhatFollows) {
  const auto told = [](std::string_view text) {
    const auto quantity = quantityOf(text);
    return quantity ? std::to_string(quantity->number) + "|" + std::string(quantity->unit) : "none";
  };
  EXPECT_EQ(told("9.14 bar"), "9.140000|bar");
  EXPECT_EQ(told("-3,5 °C"), "-3.500000|°C");
  EXPECT_EQ(told("+12%"), "12.000000|%");
  EXPECT_EQ(told("7"), "7.000000|");
  for (const std::string_view text :
       {"", "bar", "-", ".5", "1.2.3", "1,234,567", "1,2.3", "- 4", "99999999999999999999999999999999999999999999"})
    EXPECT_EQ(told(text), "none") << text;
}

}  // namespace
}  // namespace korvel::query
