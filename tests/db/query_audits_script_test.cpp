#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "base/atomic_file.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/query_audits_script.h"

namespace korvel::db {
namespace {

const std::filesystem::path scriptFile = std::filesystem::path(KORVEL_SOURCE_DIR) / "sql" / "QueryAudits.sql";

std::size_t countOf(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// With KORVEL_UPDATE_GOLDENS=1 in the environment the committed file is written anew.
TEST(QueryAuditsScript, isTheCommittedFile) {
  if (std::getenv("KORVEL_UPDATE_GOLDENS") != nullptr) writeFileAtomically(scriptFile, queryAuditsScript());
  EXPECT_EQ(readFile(scriptFile), queryAuditsScript());
}

TEST(QueryAuditsScript, saysInItsHeadThatPermissionsAreDroppedAndHowTheyComeBack) {
  const std::string script = queryAuditsScript();
  const std::string head = script.substr(0, script.find("\n\n"));
  EXPECT_NE(head.find("drops every permission"), std::string::npos) << head;
  EXPECT_NE(head.find("\n--     GRANT EXECUTE ON dbo.QueryAudits TO [DOMAIN\\group]"), std::string::npos) << head;
  for (std::size_t at = 0; at < head.size(); at = head.find('\n', at) + 1) {
    EXPECT_EQ(head.substr(at, 2), "--") << "all of it is a comment: " << head;
    if (head.find('\n', at) == std::string::npos) break;
  }
}

TEST(QueryAuditsScript, dropsBeforeItCreates) {
  const std::string script = queryAuditsScript();
  const auto drop = script.find("DROP PROCEDURE dbo.QueryAudits\nGO\n");
  const auto create = script.find("CREATE PROCEDURE dbo.QueryAudits\n");
  ASSERT_NE(drop, std::string::npos);
  ASSERT_NE(create, std::string::npos);
  EXPECT_LT(drop, create);
  EXPECT_TRUE(script.ends_with("END\nGO\n"));
}

TEST(QueryAuditsScript, declaresTheThirteenParametersInOrder) {
  EXPECT_NE(queryAuditsScript().find("    @KorvelExplorer varchar(10),\n"
                                     "    @Alarms varchar(10),\n"
                                     "    @TagLogging varchar(10),\n"
                                     "    @UAcs varchar(10),\n"
                                     "    @CustomActions varchar(10),\n"
                                     "    @UArt varchar(10),\n"
                                     "    @CheckIN varchar(10),\n"
                                     "    @CheckOUT varchar(10),\n"
                                     "    @Rollback varchar(10),\n"
                                     "    @Restore varchar(10),\n"
                                     "    @bDate varchar(10),\n"
                                     "    @FromDate varchar(50),\n"
                                     "    @ToDate varchar(50)\n"
                                     "AS\n"),
            std::string::npos);
}

TEST(QueryAuditsScript, selectsUnderEachCondition) {
  const std::string script = queryAuditsScript();
  const std::string dates = " and DateTime >=@FromDate and DateTime <= @ToDate";
  for (const std::string condition :
       {"AuditType = 'CS'",
        "AuditType = 'CS' and TableName like 'vel_Alg%' or AuditType = 'CS' and TableName like 'MS%'",
        "TableName like 'PDE%'", "AuditType = 'CS' and TableName like 'UA%'", "AuditType = 'OA'",
        "AuditType = 'RT' and TableName like 'UA%'", "AuditType = 'DC' and EventType = 'CHECK_IN'",
        "AuditType = 'DC' and EventType = 'CHECK_OUT'", "AuditType = 'DC' and EventType = 'ROLLBACK'",
        "AuditType = 'DC' and EventType = 'RESTORE'"}) {
    const std::string selection = "SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE " + condition;
    EXPECT_EQ(countOf(script, selection + "\n"), 1U) << condition;
    EXPECT_EQ(countOf(script, selection + dates + "\n"), 1U) << condition;
  }
  EXPECT_EQ(countOf(script, "SELECT TOP 5000 * FROM Korvel_Audit_Trails\n"), 1U);
  EXPECT_EQ(countOf(script,
                    "SELECT TOP 5000 * FROM Korvel_Audit_Trails WHERE DateTime >=@FromDate and DateTime <= @ToDate\n"),
            1U);
  EXPECT_EQ(countOf(script, "SELECT TOP 5000"), 22U);
  EXPECT_EQ(countOf(script, "ORDER BY"), 0U);
}

TEST(QueryAuditsScript, readsDatesTheSameWayForEveryLogin) {
  const std::string script = queryAuditsScript();
  const auto order = script.find("    SET DATEFORMAT ymd\n");
  ASSERT_NE(order, std::string::npos);
  EXPECT_GT(order, script.find("AS\nBEGIN\n"));
  EXPECT_LT(order, script.find("@FromDate and"));
}

TEST(QueryAuditsScript, isPlainText) {
  const std::string script = queryAuditsScript();
  EXPECT_TRUE(std::all_of(script.begin(), script.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
}

}  // namespace
}  // namespace korvel::db
