#include <gtest/gtest.h>

#include "db/embedded/audit_statements.h"
#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_calls.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

/// SQLite's query plans for the statements of the standard query on a table with its indexes.
class EmbeddedIndexes : public testing::Test {
 protected:
  void SetUp() override {
    test::writeAuditDatabase(folder_ / "D.db", {{1, "2004-03-07", "UA", "E", "CS"}});
    connection_ = openEmbedded(folder_.path(), "D");
  }

  std::string planOf(const test::Flags& flags, bool withDates) {
    const auto call = parseQueryAuditsCall(
        test::auditCall(flags, withDates ? "True" : "False", "2004-03-01 00:00:00.000", "2004-03-07 23:59:59.999"));
    std::string plan;
    for (const std::string& statement : auditStatements(*call, rowNumberOrder))
      for (const std::string& step : test::resultsOf(*connection_, "EXPLAIN QUERY PLAN " + statement).at(0).column(3))
        plan += step + "\n";
    return plan;
  }

  test::TemporaryFolder folder_;
  std::unique_ptr<Connection> connection_;
};

TEST_F(EmbeddedIndexes, everyCategoryHasItsOwnAndSortsNothing) {
  struct Case {
    const char* parameter;
    const char* index;
  };
  for (const auto& [parameter, index] :
       {Case{"KorvelExplorer", "Type"}, Case{"TagLogging", "Area3"}, Case{"UAcs", "Area2"},
        Case{"CustomActions", "Type"}, Case{"UArt", "Area2"}, Case{"CheckIN", "Event"}, Case{"CheckOUT", "Event"},
        Case{"Rollback", "Event"}, Case{"Restore", "Event"}})
    for (const bool withDates : {false, true}) {
      const std::string plan = planOf(test::onlyFlag(parameter), withDates);
      EXPECT_NE(plan.find("USING INDEX Korvel_Audit_Trails_" + std::string(index) + " ("), std::string::npos)
          << parameter << "\n"
          << plan;
      EXPECT_EQ(plan.find("SCAN"), std::string::npos) << parameter << "\n" << plan;
      EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << parameter << "\n" << plan;
    }
}

TEST_F(EmbeddedIndexes, alarmsUseOneForEachAlternative) {
  for (const bool withDates : {false, true}) {
    const std::string plan = planOf(test::onlyFlag("Alarms"), withDates);
    EXPECT_NE(plan.find("Korvel_Audit_Trails_Area3"), std::string::npos) << plan;
    EXPECT_NE(plan.find("Korvel_Audit_Trails_Area2"), std::string::npos) << plan;
    EXPECT_EQ(plan.find("SCAN Korvel_Audit_Trails"), std::string::npos) << plan;
  }
}

TEST_F(EmbeddedIndexes, theWholeTrailIsReadInTableOrderOrByDate) {
  EXPECT_EQ(planOf(test::allFlags(), false), "SCAN Korvel_Audit_Trails\n");
  EXPECT_NE(planOf(test::allFlags(), true).find("USING INDEX Korvel_Audit_Trails_DateTime (DateTime>? AND DateTime<?)"),
            std::string::npos);
}

}  // namespace
}  // namespace korvel::db
