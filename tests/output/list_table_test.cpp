#include "output/list_table.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using test::filledList;

std::string table(const results::ResultList& list) {
  return '\n' + test::written(writeTable, list);
}

TEST(Table, AlignsItsColumns) {
  EXPECT_EQ(
      table(filledList({{"Entry ID"}, {"Area"}, {"Event"}}, {{"1", "vel_Alg_Text", "INSERT"}, {"20", "UA", "x"}})), R"(
Entry ID  Area          Event
--------  ------------  ------
1         vel_Alg_Text  INSERT
20        UA            x
)");
}

TEST(Table, AlignsByCellsOfTheTerminal) {
  EXPECT_EQ(table(filledList({{"A"}, {"B"}}, {{"ポンプ", "1"}, {"größer", "2"}, {"e\u0301", "3"}})), R"(
A       B
------  -
ポンプ  1
größer  2
e)"
                                                                                                     "\u0301"
                                                                                                     R"(       3
)");
}

TEST(Table, CannotBeDrivenByAValue) {
  EXPECT_EQ(table(filledList({{"A"}, {"B"}}, {{"a\r\nb", "\x1B[31m\u202E"}, {"\t", "C:\\new"}})), R"(
A       B
------  --------------
a\r\nb  \x1B[31m\u202E
\t      C:\new
)");
}

TEST(Table, PadsEmptyCellsInsideButNoLineEnds) {
  EXPECT_EQ(table(filledList({{"A"}, {"B"}, {"C"}}, {{"", "b", ""}, {std::nullopt, "", "c"}})), R"(
A  B  C
-  -  -
   b
      c
)");
}

TEST(Table, ShowsTheListAsItIsDisplayed) {
  EXPECT_EQ(table(filledList({{"A"}, {"B"}, {"C"}}, {{" 1 ", "x", "y"}}, results::RowFilling::standard)), R"(
A  B  C
-  -  -
1
)");
}

TEST(Table, CutsNothing) {
  const std::string wide(500, 'x');
  const std::string text = table(filledList({{"A"}, {"B"}}, {{wide, "1"}, {"short", "2"}}));
  EXPECT_NE(text.find('\n' + wide + "  1\n"), std::string::npos);
  EXPECT_NE(text.find("\nshort" + std::string(57, ' ') + "2\n"), std::string::npos);
}

TEST(Table, OfAnEmptyListHasItsCaptions) {
  EXPECT_EQ(table(filledList({{"A"}, {"Name"}}, {})), "\nA  Name\n-  ----\n");
}

}  // namespace
}  // namespace korvel::output
