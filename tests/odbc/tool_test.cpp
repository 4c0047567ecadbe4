// The tool as it is delivered, against the TDS server: with settings file, ticket and driver.
#include "db/procedure/audit_conditions.h"
#include "settings/registry.h"
#include "settings/registry_file.h"
#include "tests/odbc/realm.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

using tds::Answer;
using ::testing::HasSubstr;
using ::testing::Not;

class ToolOnAServer : public RealmTest {
 protected:
  void SetUp() override {
    RealmTest::SetUp();
    if (!server_) return;
    realm_->signIn("auditor");
    driverChoice_.emplace("KORVEL_ODBC_DRIVER", driver_);
    settings::RegistryFile settings(folder_ / "settings.reg");
    settings::Registry(settings).SaveSetting("Molvane", "AuditViewer", "CertificateAuthorities", authorities());
  }

  /// Runs a command on the server's audit database.
  ToolRun run(const std::string& command, bool withDatabase = true) {
    std::vector<std::string> arguments{command, "--server", serverName()};
    if (withDatabase) arguments.insert(arguments.end(), {"--database", "Korvel_Audit"});
    return runTool(arguments);
  }
  void answerAll(const Answer& answer) {
    server_->answerOthers([answer](const tds::Command&) { return answer; });
  }

  std::optional<EnvironmentVariable> driverChoice_;
  EnvironmentVariable settings_{"KORVEL_REGISTRY", (folder_ / "settings.reg").string()};
};

TEST_F(ToolOnAServer, queryWritesRowsUnderTheUsersOwnLogin) {
  std::vector<tds::Column> columns{{"Nr", "int"}};
  std::vector<tds::Value> row{4711};
  for (int i = 1; i < 18; ++i) {
    columns.emplace_back(i == 15 ? "AuditType" : "c" + std::to_string(i), "nvarchar(30)");
    row.emplace_back(i == 15 ? "CS" : "pump");
  }
  answerAll(Answer().procedure().result(columns).row(row));
  const ToolRun done = run("query");
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_THAT(done.out, HasSubstr("4711"));
  EXPECT_EQ(server_->record().logins.at(0).principal, "auditor@KORVEL.TEST");
}

TEST_F(ToolOnAServer, queryGivesTheServersNumberAndText) {
  answerAll(Answer().error({2812, "Could not find stored procedure 'QueryAudits'."}));
  const ToolRun failed = run("query");
  EXPECT_EQ(failed.status, 3);
  EXPECT_EQ(failed.out, "");
  EXPECT_THAT(failed.err, HasSubstr("2812"));
  EXPECT_THAT(failed.err, HasSubstr("Could not find stored procedure 'QueryAudits'."));
}

TEST_F(ToolOnAServer, databasesHaveTheirPaths) {
  answerAll(Answer()
                .result({{"name", "nvarchar(128)"}, {"is_system", "bit"}, {"physical_name", "nvarchar(260)"}})
                .row({"master", 1, "C:\\m.mdf"})
                .row({"Korvel_Audit", 0, "C:\\a.mdf"}));
  const ToolRun done = run("databases", false);
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_EQ(done.out, "Korvel_Audit\tC:\\a.mdf\n");
}

TEST_F(ToolOnAServer, checkPrintsNumberReasonAndRemedy) {
  answerAll(Answer().error({229, "The SELECT permission was denied.", 14}));
  const ToolRun failed = run("check");
  EXPECT_EQ(failed.status, 3);
  EXPECT_THAT(failed.out, HasSubstr("failed  229: Your account is not allowed to read the table"));
  EXPECT_THAT(failed.out, HasSubstr("GRANT SELECT"));
  answerAll(Answer().result({{"n", "int"}}).row({12}));
  const ToolRun done = run("check");
  EXPECT_EQ(done.status, 0) << done.out;
  EXPECT_THAT(done.out, HasSubstr("12 in the audit trail"));
}

TEST_F(ToolOnAServer, installProcedureSaysWhatIsLeftToDo) {
  answerAll(Answer());
  const ToolRun done = run("install-procedure");
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_THAT(done.out, HasSubstr("dbo.QueryAudits is installed in Korvel_Audit."));
  EXPECT_THAT(done.out, HasSubstr("GRANT EXECUTE ON dbo.QueryAudits TO "));
  EXPECT_EQ(server_->texts().back(), "COMMIT TRANSACTION");

  answerAll(Answer().error({262, "CREATE PROCEDURE permission denied.", 14}));
  const ToolRun failed = run("install-procedure");
  EXPECT_EQ(failed.status, 3);
  EXPECT_THAT(failed.err, HasSubstr("error 262: CREATE PROCEDURE permission denied."));
  EXPECT_THAT(failed.out, Not(HasSubstr("installed")));
}

}  // namespace
}  // namespace korvel::test
