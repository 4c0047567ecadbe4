#include <gtest/gtest.h>

#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_calls.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

/// Which of the stored times a date range finds.
class EmbeddedDateRange : public testing::Test {
 protected:
  bool finds(const std::string& stored, const std::string& from = "2004-03-07 00:00:00.000",
             const std::string& to = "2004-03-09 23:59:59.999") {
    const auto file = folder_ / ("D" + std::to_string(++count_) + ".db");
    test::writeAuditDatabase(file, {{1, stored, "UA", "E", "CS"}});
    const auto connection = openEmbedded(folder_.path(), file.stem().string());
    const auto rowsOf = [&](const test::Flags& flags) {
      return test::resultsOf(*connection, test::auditCall(flags, "True", from, to)).at(0).rows.size();
    };
    const bool found = rowsOf(test::onlyFlag("KorvelExplorer")) == 1;
    EXPECT_EQ(rowsOf(test::allFlags()) == 1, found) << stored;
    return found;
  }

 private:
  test::TemporaryFolder folder_;
  int count_ = 0;
};

TEST_F(EmbeddedDateRange, bothDaysAreIncludedWhole) {
  for (const char* stored :
       {"2004-03-07 00:00:00.000", "2004-03-07 00:00:00.001", "2004-03-07 23:59:59.999", "2004-03-08 12:00:00.000",
        "2004-03-09 00:00:00.000", "2004-03-09 23:59:59.998", "2004-03-09 23:59:59.999"})
    EXPECT_TRUE(finds(stored)) << stored;
  for (const char* stored :
       {"2004-03-06 23:59:59.999", "2004-03-10 00:00:00.000", "2003-03-08 12:00:00.000", "2004-04-08 12:00:00.000"})
    EXPECT_FALSE(finds(stored)) << stored;
}

TEST_F(EmbeddedDateRange, shorterFormsOfATimeCountAsWell) {
  for (const char* stored :
       {"2004-03-07", "2004-03-07 00:00", "2004-03-07 00:00:00", "2004-03-07 00:00:00.0", "2004-03-08", "2004-03-09",
        "2004-03-09 23:59", "2004-03-09 23:59:59", "2004-03-09 23:59:59.9"})
    EXPECT_TRUE(finds(stored)) << stored;
  for (const char* stored :
       {"2004-03-06", "2004-03-06 23:59:59", "2004-03-10", "2004-03-10 00:00", "2004-03-10 00:00:00"})
    EXPECT_FALSE(finds(stored)) << stored;
}

TEST_F(EmbeddedDateRange, otherFormsOfATimeCountAsWell) {
  for (const char* stored :
       {"2004-03-07T00:00:00", "2004-03-07T00:00:00.000", "2004-03-09T23:59:59.999", "2004-03-09T23:59:59Z",
        "2004-03-07T00:00:00Z", "2004-03-09 23:59:59.9999999", "2004-03-07 00:00:00.0000000", "2004-03-09 23:59:59 "})
    EXPECT_TRUE(finds(stored)) << stored;
  for (const char* stored :
       {"2004-03-06T23:59:59.999", "2004-03-10T00:00:00", "2004-03-06 23:59:59.9999999", "2004-03-10T00:00:00Z"})
    EXPECT_FALSE(finds(stored)) << stored;
}

TEST_F(EmbeddedDateRange, rangesWithinADay) {
  const std::string from = "2004-03-07 10:00:00.500";
  const std::string to = "2004-03-07 11:00:00";
  for (const char* stored : {"2004-03-07 10:00:00.500", "2004-03-07 10:00:01", "2004-03-07T10:30",
                             "2004-03-07 11:00:00", "2004-03-07 11:00"})
    EXPECT_TRUE(finds(stored, from, to)) << stored;
  for (const char* stored :
       {"2004-03-07", "2004-03-07 10:00:00.499", "2004-03-07 10:00:00", "2004-03-07 11:00:00.001", "2004-03-07 11:01"})
    EXPECT_FALSE(finds(stored, from, to)) << stored;
}

TEST_F(EmbeddedDateRange, theSameDayTwiceIsOneWholeDay) {
  const std::string from = "2004-03-07 00:00:00.000";
  const std::string to = "2004-03-07 23:59:59.999";
  for (const char* stored : {"2004-03-07", "2004-03-07 00:00:00.000", "2004-03-07 23:59:59.999", "2004-03-07T12:00"})
    EXPECT_TRUE(finds(stored, from, to)) << stored;
  EXPECT_FALSE(finds("2004-03-06 23:59:59.999", from, to));
  EXPECT_FALSE(finds("2004-03-08 00:00:00.000", from, to));
}

TEST_F(EmbeddedDateRange, aRangeTurnedRoundFindsNothing) {
  for (const char* stored : {"2004-03-07", "2004-03-08 12:00:00.000", "2004-03-09 23:59:59.999"})
    EXPECT_FALSE(finds(stored, "2004-03-09 00:00:00.000", "2004-03-07 23:59:59.999")) << stored;
}

TEST_F(EmbeddedDateRange, whatIsNoTimeIsNotFound) {
  for (const char* stored : {"", "yesterday", "0", "07.03.2004"}) EXPECT_FALSE(finds(stored)) << stored;
}

}  // namespace
}  // namespace korvel::db
