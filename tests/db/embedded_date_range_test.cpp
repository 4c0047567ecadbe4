#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

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
  test::TemporaryFolder folder_;

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
        "2004-03-07T00:00:00Z", "2004-03-09 23:59:59.9999999", "2004-03-07 00:00:00.0000000", "2004-03-09 23:59:59 ",
        "2004-03-09 23:59:59 Z", "2004-03-08 12:00:00.123456789", "2004-03-08 9:05", "2004-03-08  12:00", "2004-03-08Z",
        "2004-03-09T23:59:59.999+01:00", "2004-03-09 23:59:59.999 -05:30", "2004-03-08T12:00+0100"})
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
  for (const char* stored : {"",
                             "yesterday",
                             "0",
                             "07.03.2004",
                             "20040308",
                             "2004-3-8",
                             "2004-03-8",
                             "2004-03",
                             "2004-03-08 nonsense",
                             "2004-03-08nonsense",
                             "2004-03-08 12:00 nonsense",
                             "2004-03-08 12:00:00.000x",
                             "2004-03-08 12",
                             "2004-03-08 12:00:00.",
                             "2004-03-08 12:00:",
                             "2004-03-08T",
                             "2004-03-08 12:00 ZZ",
                             "2004-03-08 12:00 pm",
                             "2004-03-08~",
                             "2004-03-08 12:00:00 +1",
                             "2004-03-08+",
                             "2004-03-08-"})
    EXPECT_FALSE(finds(stored)) << stored;
  for (const char* day : {"2004-03-07", "2004-03-08", "2004-03-09"})
    EXPECT_FALSE(finds(std::string(day) + " nonsense")) << day << ": in the middle as on the first and the last day";
}

TEST_F(EmbeddedDateRange, whatNoCalendarAndNoClockHasIsNotFound) {
  for (const char* stored : {"2004-02-30", "2004-02-30 12:00:00.000", "2004-03-00", "2004-02-28 24:00:00",
                             "2004-02-28 12:60", "2004-02-28 12:00:60"})
    EXPECT_FALSE(finds(stored, "2004-02-01 00:00:00.000", "2004-03-31 23:59:59.999")) << stored;
  EXPECT_TRUE(finds("2004-02-29", "2004-02-01 00:00:00.000", "2004-03-31 23:59:59.999"));
  EXPECT_FALSE(finds("2004-13-01", "2004-01-01 00:00:00.000", "2005-12-31 23:59:59.999"));
}

TEST_F(EmbeddedDateRange, midnightBelongsToTheDayThatItBegins) {
  // A server whose column is a datetime rounds the last millisecond of a day up to the next midnight.
  EXPECT_TRUE(finds("2004-03-09 23:59:59.999"));
  EXPECT_FALSE(finds("2004-03-10 00:00:00.000"));
  EXPECT_TRUE(finds("2004-03-10 00:00:00.000", "2004-03-10 00:00:00.000", "2004-03-10 23:59:59.999"));
}

TEST_F(EmbeddedDateRange, valuesThatAreNoTextsAreNotFound) {
  for (const char* value : {"20040308", "2453073.0", "x'323030342d30332d3038'", "NULL"}) {
    const auto file = folder_ / "V.db";
    std::filesystem::remove(file);
    test::writeAuditDatabase(file, {{1, "2004-03-08", "UA", "E", "CS"}, {2, "2004-03-08", "UA", "E", "CS"}});
    test::DatabaseWriter(file).run("UPDATE Korvel_Audit_Trails SET DateTime = " + std::string(value) + " WHERE Nr = 1");
    const auto connection = openEmbedded(folder_.path(), "V");
    const auto rows =
        test::resultsOf(*connection, test::auditCall(test::allFlags(), "True", "2004-03-07", "2004-03-09"));
    EXPECT_EQ(rows.at(0).column(0), std::vector<std::string>{"2"}) << value;
  }
}

}  // namespace
}  // namespace korvel::db
