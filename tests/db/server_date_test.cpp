#include "db/embedded/server_date.h"

#include <gtest/gtest.h>

#include "tests/db/collected_answer.h"

namespace korvel::db {
namespace {

std::string canonical(std::string_view text) {
  return canonicalServerDate(text, "FromDate");
}

std::int32_t refusal(std::string_view text) {
  const auto error = test::errorOf([&] { (void)canonical(text); });
  return error ? error->number() : 0;
}

TEST(ServerDate, readsTheViewersOwnTexts) {
  EXPECT_EQ(canonical("2004-03-07 00:00:00.000"), "2004-03-07 00:00:00.000");
  EXPECT_EQ(canonical("2004-03-07 23:59:59.999"), "2004-03-07 23:59:59.999");
}

TEST(ServerDate, readsTypedDates) {
  EXPECT_EQ(canonical("2004-03-07"), "2004-03-07 00:00:00.000");
  EXPECT_EQ(canonical("2004-3-7 9:05"), "2004-03-07 09:05:00.000");
  EXPECT_EQ(canonical("20040307"), "2004-03-07 00:00:00.000");
  EXPECT_EQ(canonical("20040307 13:45:59"), "2004-03-07 13:45:59.000");
  EXPECT_EQ(canonical("2004-03-07T13:45:59.1"), "2004-03-07 13:45:59.100");
  EXPECT_EQ(canonical("  2004-03-07   13:45:59.1239999 "), "2004-03-07 13:45:59.123");
  EXPECT_EQ(canonical("2004-02-29"), "2004-02-29 00:00:00.000");
}

TEST(ServerDate, beginsWhereTheServersCalendarBegins) {
  EXPECT_EQ(canonical("1753-01-01"), "1753-01-01 00:00:00.000");
  EXPECT_EQ(canonical("1753-01-01 00:00:00.000"), "1753-01-01 00:00:00.000");
  EXPECT_EQ(refusal("1752-12-31 23:59:59.999"), 242);
}

TEST(ServerDate, theEmptyTextIsTheServersFirstOfJanuary) {
  EXPECT_EQ(canonical(""), "1900-01-01 00:00:00.000");
  EXPECT_EQ(canonical("  "), "1900-01-01 00:00:00.000");
}

TEST(ServerDate, refusesWhatIsNoDate) {
  for (const char* text : {"False", "2004", "2004-03", "2004-03-", "2004-03-07x", "07.03.2004", "2004-03-07 13",
                           "2004-03-07 13:", "2004-03-07 13:45:59.", "2004-03-07 13:45:59.12345678",
                           "2004-03-07 13:45 pm", "2004-003-07", "' OR 1=1", "2004-03-07'"})
    EXPECT_EQ(refusal(text), 241) << text;
}

TEST(ServerDate, refusesWhatNoCalendarHas) {
  for (const char* text : {"2004-02-30", "2003-02-29", "2004-13-01", "2004-00-10", "2004-01-00", "1752-12-31",
                           "2004-03-07 24:00", "2004-03-07 10:60", "2004-03-07 10:10:60"})
    EXPECT_EQ(refusal(text), 242) << text;
}

TEST(ServerDate, namesTextAndParameter) {
  const auto error = test::errorOf([] { (void)canonicalServerDate("False", "ToDate"); });
  EXPECT_NE(error->description().find("False"), std::string::npos);
  EXPECT_NE(error->description().find("@ToDate"), std::string::npos);
}

}  // namespace
}  // namespace korvel::db
