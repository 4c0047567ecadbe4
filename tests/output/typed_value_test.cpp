#include "output/typed_value.h"

#include <gtest/gtest.h>

namespace korvel::output {
namespace {

TEST(LosslessNumber, IsWhatASpreadsheetShowsAlike) {
  EXPECT_EQ(losslessNumber("0"), 0.0);
  EXPECT_EQ(losslessNumber("-7"), -7.0);
  EXPECT_EQ(losslessNumber("123456789012345"), 123456789012345.0);
  EXPECT_EQ(losslessNumber("1.50"), 1.5);
  EXPECT_EQ(losslessNumber("0.000000000000000000123"), 0.000000000000000000123);
  EXPECT_EQ(losslessNumber("0.1234567890123450000"), 0.123456789012345);
}

TEST(LosslessNumber, IsNoTextThatOnlyLooksLikeOne) {
  for (const char* text : {"", "-", "007", "00", "-0", "1234567890123456", "0.1234567890123456", "1.", ".5", "1e5",
                           "+1", " 1", "1 ", "0x10", "inf", "nan", "1,5", "1.2.3", "--1"})
    EXPECT_EQ(losslessNumber(text), std::nullopt) << text;
}

TEST(SpreadsheetDate, CountsDaysFromTheEndOf1899) {
  EXPECT_EQ(spreadsheetDate("1900-03-01"), 61.0);
  EXPECT_EQ(spreadsheetDate("2004-03-07"), 38053.0);
  EXPECT_EQ(spreadsheetDate("2004-03-07 12:00"), 38053.5);
  EXPECT_EQ(spreadsheetDate("2004-03-07T06:00:00"), 38053.25);
  EXPECT_DOUBLE_EQ(spreadsheetDate("2004-03-07 13:45:59.123").value_or(0), 38053 + 49559.123 / 86400);
  EXPECT_EQ(spreadsheetDate("2004-03-07 12:00:00.0000000"), 38053.5);
}

TEST(SpreadsheetDate, IsNoTextThatItWouldChange) {
  for (const char* text :
       {"", "1899-12-31", "1900-02-28", "2004-02-30", "2004-13-01", "2004-03-07 24:00", "2004-03-07 12",
        "2004-03-07 12:00:00.1234567", "2004-03-07 12:00Z", "2004-03-07 ", "07.03.2004", "x"})
    EXPECT_EQ(spreadsheetDate(text), std::nullopt) << text;
}

TEST(BooleanFrom, ReadsTheFormsOfServers) {
  EXPECT_EQ(booleanFrom("1"), true);
  EXPECT_EQ(booleanFrom("False"), false);
  EXPECT_EQ(booleanFrom("2"), std::nullopt);
  EXPECT_EQ(booleanFrom(""), std::nullopt);
}

}  // namespace
}  // namespace korvel::output
