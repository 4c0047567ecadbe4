#include "output/list_writers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/audit_rows.h"
#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using nlohmann::json;
using test::filledList;
using test::written;

std::string csv(const std::vector<test::ScriptedRow>& rows, const std::vector<db::Field>& fields = {{"A"}, {"B"}}) {
  return written(writeCsv, filledList(fields, rows));
}

TEST(Csv, WritesNamesAndValues) {
  EXPECT_EQ(csv({{"a", "b"}, {"c", "d"}}), "A,B\r\na,b\r\nc,d\r\n");
}

TEST(Csv, QuotesWhatNeedsIt) {
  EXPECT_EQ(csv({{"1,5", "say \"no\""}}), "A,B\r\n\"1,5\",\"say \"\"no\"\"\"\r\n");
  EXPECT_EQ(csv({{"two\r\nlines", "a\nb"}}), "A,B\r\n\"two\r\nlines\",\"a\nb\"\r\n");
  EXPECT_EQ(csv({{"\r", "\""}}), "A,B\r\n\"\r\",\"\"\"\"\r\n");
  EXPECT_EQ(csv({{"x|y;z", "größer"}}), "A,B\r\nx|y;z,größer\r\n");
}

TEST(Csv, KeepsNullAndEmptyApart) {
  EXPECT_EQ(csv({{std::nullopt, ""}}), "A,B\r\n,\"\"\r\n");
}

TEST(Csv, KeepsBlanksAndBytes) {
  EXPECT_EQ(csv({{" x ", "a\xFF\x1B[2J"}}), "A,B\r\n\" x \",a\xFF\x1B[2J\r\n");
  EXPECT_EQ(csv({{std::string("a\0b", 3), "c"}}), std::string("A,B\r\na\0b,c\r\n", 12));
}

TEST(Csv, QuotesABlankOnEitherSideAlone) {
  EXPECT_EQ(csv({{" x", "x "}}), "A,B\r\n\" x\",\"x \"\r\n");
  EXPECT_EQ(csv({{" a longer text", "a longer text "}}), "A,B\r\n\" a longer text\",\"a longer text \"\r\n");
  EXPECT_EQ(csv({{"a b", "a longer text"}}), "A,B\r\na b,a longer text\r\n");
}

TEST(Csv, QuotesNames) {
  EXPECT_EQ(csv({{"a", "b"}}, {{"x,y"}, {""}}), "\"x,y\",\"\"\r\na,b\r\n");
}

TEST(Csv, CarriesEveryColumnOfAStandardList) {
  auto row = test::auditRow("7", "CS");
  row[16] = " a comment ";
  const auto list = filledList(test::auditFields(), {row}, results::RowFilling::standard);
  EXPECT_EQ(written(writeCsv, list),
            "Nr,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,OldValue,"
            "NewValue,PCName,OSUser,AppUser,UserName,AuditType,Comments,T1\r\n"
            "7,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,OldValue,"
            "NewValue,PCName,OSUser,AppUser,UserName,CS,\" a comment \",T1\r\n");
}

TEST(Csv, FollowsTheOrderOfTheList) {
  auto list = filledList({{"A"}}, {{"b"}, {"a"}, {"c"}});
  list.sortBy({0}, results::SortOrder::descending);
  EXPECT_EQ(written(writeCsv, list), "A\r\nc\r\nb\r\na\r\n");
}

TEST(Csv, OfResultSetsOfSeveralWidthsHasTheWidest) {
  auto store = std::make_shared<results::RowStore>();
  const std::vector<db::Field> narrow{{"A"}};
  const std::vector<db::Field> wide{{"X"}, {"Y"}};
  const std::vector<db::Cell> one{{"1"}};
  const std::vector<db::Cell> two{{"2"}, {"3"}};
  store->beginResult(narrow);
  const auto first = store->append(one);
  store->beginResult(wide);
  const auto second = store->append(two);
  results::ResultList list(results::RowFilling::whole);
  list.setRows(store, {first, second});
  EXPECT_EQ(written(writeCsv, list), "X,Y\r\n1,\r\n2,3\r\n");
  EXPECT_EQ(written(writeJson, list), "[\n{\"A\":\"1\"},\n{\"X\":\"2\",\"Y\":\"3\"}\n]\n");
}

TEST(Json, WritesOneObjectARecordWithAllColumns) {
  auto row = test::auditRow("7", "CS");
  row[9] = "  old ";
  row[10] = std::nullopt;
  row[16] = "a comment";
  const auto list = filledList(test::auditFields(), {row, test::auditRow("8", "AU")}, results::RowFilling::standard);
  const json records = json::parse(written(writeJson, list));
  ASSERT_EQ(records.size(), 2U);
  for (const json& record : records) EXPECT_EQ(record.size(), 18U);
  for (const query::AuditColumn& column : query::auditColumns()) EXPECT_TRUE(records[0].contains(column.name));
  EXPECT_EQ(records[0]["Nr"], "7") << "numbers are strings as well";
  EXPECT_EQ(records[0]["OldValue"], "  old ");
  EXPECT_TRUE(records[0]["NewValue"].is_null());
  EXPECT_EQ(records[0]["Comments"], "a comment");
  EXPECT_EQ(records[0]["T1"], "T1");
  EXPECT_EQ(records[1]["AuditType"], "AU");
}

TEST(Json, KeepsTheOrderOfTheColumns) {
  EXPECT_EQ(written(writeJson, filledList({{"b"}, {"a"}}, {{"1", std::nullopt}, {"", "2"}})),
            "[\n{\"b\":\"1\",\"a\":null},\n{\"b\":\"\",\"a\":\"2\"}\n]\n");
}

TEST(Json, ReadsBackWhateverAValueHolds) {
  std::string everyByte;
  for (char c = 0; c < 0x7F; ++c) everyByte += c;
  for (const std::string& value :
       {everyByte, std::string("\x7F\u0080\u009B\u009F\u00A0\u00FF"), std::string("say \"no\"\\"),
        std::string("größer ポンプ 👷 \u2028"), std::string("</script>")}) {
    const std::string text = written(writeJson, filledList({{"A"}}, {{value}}));
    EXPECT_EQ(json::parse(text)[0]["A"], value);
  }
}

TEST(Json, HoldsNoControlCharacterButItsOwnLineEnds) {
  std::string controls;
  for (char c = 0; c < 0x20; ++c) controls += c;
  controls += "\x7F\u0080\u009B\u009F";
  const std::string text = written(writeJson, filledList({{controls}}, {{controls}}));
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_EQ(text.find('\x7F'), std::string::npos);
  EXPECT_EQ(text.find('\xC2'), std::string::npos);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
}

TEST(Json, ReplacesBytesThatAreNotUtf8) {
  const auto list = filledList({{"n\xFF"}}, {{"a\xFFz\xC3"}, {"\xED\xA0\x80"}, {"\xC2"}});
  const json records = json::parse(written(writeJson, list));
  EXPECT_EQ(records[0]["n\uFFFD"], "a\uFFFDz\uFFFD");
  EXPECT_EQ(records[2]["n\uFFFD"], "\uFFFD");
}

TEST(Json, CountsTheValuesWithSuchBytes) {
  const auto list =
      filledList({{"A"}, {"n\xFF"}}, {{"a", std::nullopt}, {"ok", "a\xFFz\xC3"}, {"\xED\xA0\x80", "\xC2"}});
  const JsonReplacements replaced = writeJson(list, [](std::string_view) {});
  EXPECT_EQ(replaced.values, 3U);
  EXPECT_EQ(replaced.firstRow, 1U);
  EXPECT_EQ(replaced.firstColumn, 1U);
  EXPECT_TRUE(replaced.names);
  const JsonReplacements none = writeJson(filledList({{"\"größe\""}}, {{"\x1B ポンプ"}}), [](std::string_view) {});
  EXPECT_EQ(none.values, 0U);
  EXPECT_FALSE(none.names);
}

TEST(Json, KeepsColumnsOfTheSameNameApart) {
  const auto list = filledList({{"x"}, {"x"}, {"x_2"}, {""}}, {{"1", "2", "3", "4"}});
  EXPECT_EQ(written(writeJson, list), "[\n{\"x\":\"1\",\"x_2\":\"2\",\"x_2_2\":\"3\",\"\":\"4\"}\n]\n");
}

TEST(Json, OfAnEmptyListIsAnEmptyArray) {
  EXPECT_EQ(written(writeJson, filledList({{"A"}}, {})), "[]\n");
  EXPECT_EQ(written(writeJson, results::ResultList(results::RowFilling::whole)), "[]\n");
}

TEST(Csv, OfAnEmptyListIsItsCaptions) {
  EXPECT_EQ(written(writeCsv, filledList({{"A"}, {"B"}}, {})), "A,B\r\n");
}

}  // namespace
}  // namespace korvel::output
