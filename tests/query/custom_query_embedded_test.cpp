#include <gtest/gtest.h>
#include <sqlite3.h>

#include "base/atomic_file.h"
#include "db/connection_state.h"
#include "db/connection_string.h"
#include "db/open_connection.h"
#include "query/custom_query.h"
#include "query/query_choices.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

/// Custom queries of a real database of three records.
struct CustomQueryOfAFile : testing::Test {
  CustomQueryOfAFile() {
    test::writeAuditDatabase(folder / "Korvel_Audit.db", {{1, "2004-03-07 13:45:59", "UATable", "CHANGE", "CS"},
                                                          {2, "2004-03-08 01:00:00", "UATable", "CHANGE", "RT"},
                                                          {3, std::nullopt, "  ", "", "OA"}});
  }

  CustomReport run(const std::string& text, const QueryProgress& progress = {},
                   const QueryEnvironment& environment = {}) {
    return runCustomQuery(text, db::buildConnectionString(folder.path().string(), "Korvel_Audit"), db::openConnection,
                          list, progress, environment);
  }
  Error failureOfText(const std::string& text) {
    const CustomReport report = run(text);
    EXPECT_EQ(report.outcome, CustomOutcome::failed) << text;
    EXPECT_EQ(list.rowCount(), 0U) << text;
    return report.failure.value_or(Error(0, "none"));
  }

  test::TemporaryFolder folder;
  results::ResultList list{results::RowFilling::whole};
};

TEST_F(CustomQueryOfAFile, ShowsEveryColumnOfTheTrail) {
  EXPECT_EQ(run("Select * from Korvel_Audit_Trails\r\n").outcome, CustomOutcome::filled);
  EXPECT_EQ(list.rowCount(), 3U);
  ASSERT_EQ(list.columns().size(), auditColumnCount);
  EXPECT_EQ(list.columns()[16].caption, "Comments");
  EXPECT_EQ(list.text({0}, {17}), "1");
  EXPECT_EQ(list.text({2}, {1}), "");
  EXPECT_EQ(list.text({2}, {5}), "");
}

TEST_F(CustomQueryOfAFile, ColumnsFollowTheSelectListOfThePicker) {
  std::array<bool, auditColumnCount> selected{};
  selected[1] = selected[14] = true;
  EXPECT_EQ(run(pickedQuery(selected).value()).outcome, CustomOutcome::filled);
  ASSERT_EQ(list.columns().size(), 2U);
  EXPECT_EQ(list.columns()[0].caption, "DateTime");
  EXPECT_EQ(list.columns()[1].caption, "UserName");
  selected.fill(true);
  run(pickedQuery(selected).value());
  for (std::size_t i = 0; i < auditColumnCount; ++i) EXPECT_EQ(list.columns().at(i).caption, pickableFields().at(i));
}

TEST_F(CustomQueryOfAFile, KeepsTheOrderThatIsAskedFor) {
  run("select Nr from Korvel_Audit_Trails order by Nr desc");
  list.sortBy({0}, results::SortOrder::ascending);
  run("select Nr from Korvel_Audit_Trails order by Nr desc");
  EXPECT_EQ(list.text({0}, {0}), "3");
}

TEST_F(CustomQueryOfAFile, NoRowsAndNoStatementAreNoRecords) {
  for (const char* text : {"select * from Korvel_Audit_Trails where Nr > 3", "", " \r\n ", "-- nothing", ";;"})
    EXPECT_EQ(run(text).outcome, CustomOutcome::noRecords) << text;
}

TEST_F(CustomQueryOfAFile, LaterResultsAreNotLookedAt) {
  EXPECT_EQ(run("select 1 as a; select 2 as b; nonsense").outcome, CustomOutcome::filled);
  EXPECT_EQ(list.columns().at(0).caption, "a");
  EXPECT_EQ(list.rowCount(), 1U);
}

TEST_F(CustomQueryOfAFile, ErrorsCarryTheServersNumberTextAndLine) {
  const Error missing = failureOfText("select Nr,\r\n  Absent\r\nfrom Korvel_Audit_Trails");
  EXPECT_EQ(missing.number(), SQLITE_ERROR);
  EXPECT_NE(missing.description().find("no such column: Absent"), std::string::npos) << missing.description();
  EXPECT_EQ(missing.line(), 2);
  EXPECT_EQ(failureOfText("selec 1").line(), 1);
  EXPECT_EQ(failureOfText("\n\n select 1 from from").line(), 3);
  EXPECT_EQ(failureOfText("-- ü\n-- ß\nselect (").line(), std::nullopt);  // the end of the text is no place in it
}

TEST_F(CustomQueryOfAFile, AMissingDatabaseIsAnError) {
  std::filesystem::remove(folder / "Korvel_Audit.db");
  EXPECT_EQ(failureOfText("select 1").textKey(), "db.fileMissing");
}

TEST_F(CustomQueryOfAFile, ChangesAreRefused) {
  const std::string before = readFile(folder / "Korvel_Audit.db");
  for (const char* text :
       {"UPDATE Korvel_Audit_Trails SET Comments = 'forged'", "INSERT INTO Korvel_Audit_Trails (Nr) VALUES (9)",
        "DELETE FROM Korvel_Audit_Trails", "DROP TABLE Korvel_Audit_Trails", "CREATE TABLE t (a)",
        "WITH c AS (SELECT 1) DELETE FROM Korvel_Audit_Trails RETURNING Nr",
        "DELETE FROM Korvel_Audit_Trails; SELECT 1"}) {
    const Error error = failureOfText(text);
    EXPECT_EQ(error.number(), SQLITE_AUTH) << text;
    EXPECT_EQ(error.textKey(), "db.readOnly") << text;
  }
  run("SELECT 1; DELETE FROM Korvel_Audit_Trails");
  EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), before);
}

constexpr const char* endless =
    "WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c) SELECT n FROM c WHERE n < 0";

TEST_F(CustomQueryOfAFile, AStatementWithoutAnyRowIsStopped) {
  QueryEnvironment environment;
  environment.pace = {std::chrono::milliseconds{1}, std::chrono::seconds{20}};
  int asked = 0;
  const auto third = [&](std::size_t rows) {
    EXPECT_EQ(rows, 0U);
    return ++asked < 20;
  };
  EXPECT_EQ(run(endless, third, environment).outcome, CustomOutcome::stopped);
  EXPECT_EQ(asked, 20);
  EXPECT_EQ(run("select 1").outcome, CustomOutcome::filled);
}

TEST_F(CustomQueryOfAFile, AnEndlessAnswerIsStopped) {
  const auto enough = [](std::size_t rows) { return rows < 1000; };
  QueryEnvironment environment;
  environment.pace = {std::chrono::milliseconds{1}, std::chrono::seconds{20}};
  EXPECT_EQ(run("WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c) SELECT n FROM c", enough, environment)
                .outcome,
            CustomOutcome::stopped);
  EXPECT_EQ(list.rowCount(), 0U);
}

TEST_F(CustomQueryOfAFile, WhatIsThrownWhileTheEngineWorksIsAFailure) {
  QueryEnvironment environment;
  environment.pace = {std::chrono::milliseconds{1}, std::chrono::seconds{20}};
  int asked = 0;
  const auto throws = [&](std::size_t) {
    if (++asked > 10) throw Error(77, "thrown");
    return true;
  };
  EXPECT_EQ(run(endless, throws, environment).failure.value_or(Error(0, "")).number(), 77);
}

}  // namespace
}  // namespace korvel::query
