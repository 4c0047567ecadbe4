#include "output/separated_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using test::filledList;
using test::written;

TEST(TextExport, HeaderEndsInACommaAndRowsDoNot) {
  const auto list = filledList({{"A"}, {"B"}, {"C"}}, {{"a", "b", "c"}});
  EXPECT_EQ(written(writeText, list), "A,B,C,\r\na,b,c\r\n");
}

TEST(ExchangeFile, HeaderEndsInABarAndRowsDoNot) {
  const auto list = filledList({{"A"}, {"B"}, {"C"}}, {{"a", "b", "c"}, {"d", "e", "f"}});
  EXPECT_EQ(written(writeExchange, list), "A|B|C|\r\na|b|c\r\nd|e|f\r\n");
}

TEST(SeparatedLines, WriteValuesAsTheyStand) {
  const auto list = filledList({{"A"}, {"B"}}, {{"1,5", "x|y"}, {"\"quoted\"", "two\r\nlines"}, {"\x1B[2J", "größer"}});
  EXPECT_EQ(written(writeText, list), "A,B,\r\n1,5,x|y\r\n\"quoted\",two\r\nlines\r\n\x1B[2J,größer\r\n");
  EXPECT_EQ(written(writeExchange, list), "A|B|\r\n1,5|x|y\r\n\"quoted\"|two\r\nlines\r\n\x1B[2J|größer\r\n");
}

TEST(SeparatedLines, WriteTheListAsItIsDisplayed) {
  const auto list =
      filledList({{"A"}, {"B"}, {"C"}, {"D"}}, {{"  a ", std::nullopt, "c", "d"}}, results::RowFilling::standard);
  EXPECT_EQ(written(writeText, list), "A,B,C,D,\r\na,,,\r\n");
}

TEST(SeparatedLines, OfOneColumnHaveOneSeparator) {
  EXPECT_EQ(written(writeText, filledList({{"A"}}, {{"x"}, {""}})), "A,\r\nx\r\n\r\n");
}

TEST(SeparatedLines, OfAnEmptyListAreTheHeader) {
  EXPECT_EQ(written(writeExchange, filledList({{"A"}, {"B"}}, {})), "A|B|\r\n");
}

}  // namespace
}  // namespace korvel::output
