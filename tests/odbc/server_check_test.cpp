#include "db/odbc/server_check.h"

#include "db/odbc/install_procedure.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/query_audits_script.h"
#include "settings/string_table.h"
#include "tests/db/audit_database.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using db::CheckOutcome;
using tds::Answer;
using tds::Moment;
using tds::Steps;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const settings::LanguageOffset english;

/// A line a step: "ok Port: 1433 is open", "failed Login: ...", "not reached Rows".
std::string printed(const std::vector<db::CheckStep>& steps, bool details = false) {
  std::string text;
  for (const db::CheckStep& step : steps) {
    text += step.outcome == CheckOutcome::ok ? "ok " : step.outcome == CheckOutcome::failed ? "failed " : "- ";
    text += step.key + (details ? ": " + db::checkDetail(step, english) : "") + "\n";
  }
  return text;
}

const db::CheckStep* failedStep(const std::vector<db::CheckStep>& steps) {
  for (const db::CheckStep& step : steps)
    if (step.outcome == CheckOutcome::failed) return &step;
  return nullptr;
}

class ServerCheck : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                   Answer().result({{"Nr", "int"}, {"DateTime", "datetime"}}));
    server_.answer(emptyCall, Answer().procedure());
    server_.answer("SELECT COUNT(*) AS n FROM Korvel_Audit_Trails", Answer().result({{"n", "int"}}).row({4711}));
  }

  const std::string emptyCall =
      "QueryAudits 'False','False','False','False','False','False','False','False','False','False','False','False',"
      "'False'";

  std::vector<db::CheckStep> check(const std::string& database = "Korvel_Audit") {
    return db::checkServer(serverName(), database, access_);
  }
  /// The failed step and its message.
  std::string failure() {
    const auto steps = check();
    const db::CheckStep* const step = failedStep(steps);
    return step == nullptr ? "none" : step->key + " " + step->failure->textKey();
  }
};

TEST_F(ServerCheck, goesTheWholeWay) {
  EXPECT_EQ(printed(check(), true), "ok name: resolved to localhost:" + std::to_string(server_.port()) +
                                        "\nok port: " + std::to_string(server_.port()) +
                                        " is open\n"
                                        "ok protocol: the server answers, version 15.0.4096\n"
                                        "ok encryption: TLSv1.2, the certificate is trusted\n"
                                        "ok ticket: valid for MSSQLSvc/localhost:" +
                                        std::to_string(server_.port()) +
                                        "\n"
                                        "ok login: accepted\n"
                                        "ok database: Korvel_Audit can be opened\n"
                                        "ok table: readable, 2 columns\n"
                                        "ok procedure: present and callable\n"
                                        "ok rows: 4711 in the audit trail\n");
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

TEST_F(ServerCheck, reportsNoTicketThatWasNotChecked) {
  access_.acquireTicket = [](const std::string&, const db::net::Deadline&) {
    return db::odbc::Ticket{db::odbc::TicketState::leftToSystem};
  };
  EXPECT_THAT(printed(check(), true), HasSubstr("\nok ticket: left to Windows at login\nok login: accepted\n"));
}

TEST_F(ServerCheck, goesOnWithAListedDatabaseWhereNoneIsNamed) {
  using Names = std::vector<std::pair<std::string, int>>;
  const auto databasesStep = [&](const Names& names) {
    Answer answer = Answer().result({{"name", "nvarchar(128)"}, {"is_system", "bit"}, {"file", "nvarchar(260)"}});
    for (const auto& [name, isSystem] : names) answer.row({name, isSystem, "C:\\x.mdf"});
    server_.answerOthers([answer](const tds::Command&) { return answer; });
    const std::string steps = printed(check(""), true);
    return steps.substr(steps.find("ok databases: "));
  };
  const std::string theRest =
      "ok table: readable, 2 columns\nok procedure: present and callable\nok rows: 4711 in the audit trail\n";
  EXPECT_EQ(databasesStep({{"master", 1}, {"KORVEL_AUDIT", 0}, {"Korvel_Audit_MU", 0}, {"Pumps", 0}}),
            "ok databases: 3 listed, looking at KORVEL_AUDIT; --database names another one\n"
            "ok database: KORVEL_AUDIT can be opened\n" +
                theRest);
  EXPECT_EQ(server_.record().logins.back().database, "KORVEL_AUDIT");
  EXPECT_EQ(databasesStep({{"Korvel_Audit_System", 1}, {"Old korvel_audit 2003", 0}, {"Pumps", 0}}),
            "ok databases: 2 listed, looking at Old korvel_audit 2003; --database names another one\n"
            "ok database: Old korvel_audit 2003 can be opened\n" +
                theRest);
  EXPECT_EQ(databasesStep({{"master", 1}, {"Pumps", 0}}),
            "ok databases: 1 listed, none named like an audit database; name one with --database\n");
}

TEST_F(ServerCheck, whoMayNotReadTheTableMayStillCallTheProcedure) {
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({229, "The SELECT permission was denied.", 14}));
  const std::string login = "ok name\nok port\nok protocol\nok encryption\nok ticket\nok login\nok database\n";
  EXPECT_EQ(printed(check()), login + "failed table\nok procedure\n- rows\n");
  EXPECT_THAT(printed(check(), true), HasSubstr("Custom queries need this right, the standard query does not."));
  server_.answer(emptyCall, Answer().error({229, "The EXECUTE permission was denied.", 14}));
  EXPECT_EQ(printed(check()), login + "failed table\nfailed procedure\n- rows\n");
  EXPECT_THAT(printed(check(), true), HasSubstr("The standard query needs this right, and no other."));
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({208, "Invalid object name 'Korvel_Audit_Trails'."}));
  EXPECT_EQ(printed(check()), login + "failed table\n- procedure\n- rows\n") << "there is nothing to call it for";
}

TEST_F(ServerCheck, everyTitleAndSentenceHasItsText) {
  for (const db::CheckStep& step : check()) {
    EXPECT_FALSE(db::checkTitle(step, english).empty()) << step.key;
    EXPECT_FALSE(db::checkDetail(step, english).empty()) << step.key;
    EXPECT_THAT(db::checkDetail(step, english), ::testing::Not(HasSubstr("%")));
  }
}

TEST_F(ServerCheck, namesTheFirstStepThatFailsAndWhatWasNotReached) {
  server_.at(Moment::preloginReceived, Steps().close());
  const auto steps = check();
  EXPECT_EQ(printed(steps),
            "ok name\nok port\nfailed protocol\n- encryption\n- ticket\n- login\n- database\n- table\n- "
            "procedure\n- rows\n");
  EXPECT_THAT(db::checkDetail(steps[2], english), HasSubstr("Check the server name and the port"));
  EXPECT_EQ(db::checkDetail(steps[3], english), "not reached");
}

TEST_F(ServerCheck, eachStepHasItsOwnReason) {
  server_.setEncryption(tds::Encryption::unsupported);
  EXPECT_EQ(failure(), "encryption failure.noEncryption");
  server_.setEncryption(tds::Encryption::available);

  const auto authorities = std::exchange(access_.options.certificateAuthorities, "");
  EXPECT_EQ(failure(), "encryption failure.certificate");
  access_.options.certificateAuthorities = authorities;

  access_.acquireTicket = [](const std::string& principal, const db::net::Deadline&) -> db::odbc::Ticket {
    throw settings::localizedError(18452, "failure.noTicket", {principal});
  };
  EXPECT_EQ(failure(), "ticket failure.noTicket");
  access_.acquireTicket = [](const std::string&, const db::net::Deadline&) {
    return db::odbc::Ticket{db::odbc::TicketState::valid};
  };

  server_.refuseLogin({{18456, "Login failed.", 14}});
  EXPECT_EQ(failure(), "login failure.loginRefused");
  server_.refuseLogin({});

  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({208, "Invalid object name 'Korvel_Audit_Trails'."}));
  EXPECT_EQ(failure(), "table failure.tableMissing");
  EXPECT_THAT(printed(check(), true), HasSubstr("failed table: 208: The database holds no table Korvel_Audit_Trails"));
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({229, "The SELECT permission was denied."}));
  EXPECT_EQ(failure(), "table failure.tableDenied");
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0", Answer().error({823, "The disk failed.", 24}));
  EXPECT_EQ(failure(), "table ");
  EXPECT_THAT(printed(check(), true), HasSubstr("failed table: 823: The disk failed.\n"));
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0", Answer().result({{"Nr", "int"}}));

  server_.answer(emptyCall, Answer().error({2812, "Could not find stored procedure 'QueryAudits'.", 16}));
  EXPECT_EQ(failure(), "procedure failure.procedureMissing");
  server_.answer(emptyCall, Answer().error({229, "The EXECUTE permission was denied.", 14}));
  EXPECT_EQ(failure(), "procedure failure.procedureDenied");
  EXPECT_THAT(printed(check(), true), HasSubstr("GRANT EXECUTE ON dbo.QueryAudits TO"));
  server_.answer(emptyCall, Answer().procedure());

  server_.stop();
  EXPECT_EQ(failure(), "port failure.portClosed");
}

TEST(EmbeddedCheck, hasTheStepsThatApply) {
  const TemporaryFolder folder;
  writeAuditDatabase(folder / "Korvel_Audit.db", {{1, std::nullopt, std::nullopt, std::nullopt, "CS"}});
  const db::odbc::ServerAccess access;
  EXPECT_EQ(printed(db::checkServer(folder.path().string(), "Korvel_Audit", access), true),
            "ok name: embedded engine, folder " + folder.path().string() +
                "\nok database: Korvel_Audit can be opened\nok table: readable, 18 columns\nok procedure: present and "
                "callable\nok rows: 1 in the audit trail\n");
  EXPECT_EQ(printed(db::checkServer(folder.path().string(), "", access)),
            "ok name\nok databases\nok database\nok table\nok procedure\nok rows\n");
  const TemporaryFolder empty;
  EXPECT_EQ(printed(db::checkServer(empty.path().string(), "", access), true),
            "ok name: embedded engine, folder " + empty.path().string() +
                "\nok databases: 0 listed, none named like an audit database; name one with --database\n");
  EXPECT_EQ(printed(db::checkServer(folder.path().string(), "Nowhere", access)),
            "ok name\nfailed database\n- table\n- procedure\n- rows\n");
  EXPECT_EQ(printed(db::checkServer((folder / "nowhere").string(), "Korvel_Audit", access)),
            "failed name\n- database\n- table\n- procedure\n- rows\n");
}

TEST(EmbeddedCheck, saysWhatIsNoAuditDatabaseAndWhatIsNoFolder) {
  const TemporaryFolder folder;
  DatabaseWriter(folder / "Other.db").run("CREATE TABLE pumps (n int)");
  const auto reason = [&](const std::filesystem::path& server) {
    const auto steps = db::checkServer(server.string(), "Other", db::odbc::ServerAccess());
    const db::CheckStep* const step = failedStep(steps);
    return step == nullptr ? "none" : step->key + " " + step->failure->textKey();
  };
  EXPECT_EQ(reason(folder.path()), "table failure.tableMissing");
  EXPECT_EQ(reason(folder / "nowhere"), "name failure.noFolder");
  EXPECT_EQ(reason(folder / "Other.db"), "name failure.notAFolder");
}

class InstallProcedure : public WireTest {};

TEST_F(InstallProcedure, runsTheScriptBatchByBatchInOneTransaction) {
  server_.answerOthers([](const tds::Command&) { return Answer(); });
  db::installQueryAudits(serverName(), "Korvel_Audit", access_);
  const auto texts = server_.texts();
  auto expected = db::scriptBatches(db::queryAuditsScript());
  ASSERT_EQ(expected.size(), 4U);
  EXPECT_THAT(expected[0], HasSubstr("DROP PROCEDURE dbo.QueryAudits"));
  EXPECT_TRUE(expected[3].starts_with("\nCREATE PROCEDURE dbo.QueryAudits")) << expected[3].substr(0, 40);
  expected.insert(expected.begin(), {"SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0", "BEGIN TRANSACTION"});
  expected.emplace_back("COMMIT TRANSACTION");
  EXPECT_EQ(texts, expected);
  EXPECT_EQ(server_.record().logins.at(0).database, "Korvel_Audit");
}

TEST_F(InstallProcedure, aFailureTakesBackWhatWasDone) {
  server_.answerOthers([](const tds::Command& command) {
    return command.text.find("CREATE PROCEDURE") == std::string::npos
               ? Answer()
               : Answer().error({262, "CREATE PROCEDURE permission denied.", 14});
  });
  const auto error = errorOf([&] { db::installQueryAudits(serverName(), "Korvel_Audit", access_); });
  EXPECT_EQ(error->number(), 262);
  const auto texts = server_.texts();
  ASSERT_EQ(texts.size(), 7U);
  EXPECT_EQ(texts[1], "BEGIN TRANSACTION");
  EXPECT_THAT(texts[5], HasSubstr("CREATE PROCEDURE"));
  EXPECT_EQ(texts.back(), "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION");
}

TEST_F(InstallProcedure, aDatabaseWithoutTheTableIsRefusedAndLeftAsItIs) {
  server_.answerOthers([](const tds::Command&) { return Answer(); });
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({208, "Invalid object name 'Korvel_Audit_Trails'."}));
  const auto error = errorOf([&] { db::installQueryAudits(serverName(), "Korvel_Audit", access_); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.tableMissing");
  EXPECT_THAT(server_.texts(), ElementsAre("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0"));
}

TEST_F(InstallProcedure, whoMayNotReadTheTableMayInstall) {
  server_.answerOthers([](const tds::Command&) { return Answer(); });
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0",
                 Answer().error({229, "The SELECT permission was denied.", 14}));
  db::installQueryAudits(serverName(), "Korvel_Audit", access_);
  EXPECT_EQ(server_.texts().back(), "COMMIT TRANSACTION");
}

TEST_F(InstallProcedure, anyOtherFailureOfTheCheckIsReportedUnchanged) {
  server_.answerOthers([](const tds::Command&) { return Answer(); });
  server_.answer("SELECT * FROM Korvel_Audit_Trails WHERE 1 = 0", Answer().error({823, "The disk failed.", 24}));
  EXPECT_EQ(errorOf([&] { db::installQueryAudits(serverName(), "Korvel_Audit", access_); })->number(), 823);
}

TEST_F(InstallProcedure, theReasonIsKeptWhereNothingCanBeTakenBack) {
  server_.answerOthers([](const tds::Command& command) {
    return command.text.find("CREATE PROCEDURE") == std::string::npos ? Answer() : Answer().close();
  });
  const auto error = errorOf([&] { db::installQueryAudits(serverName(), "Korvel_Audit", access_); });
  EXPECT_EQ(error->textKey(), "failure.connectionLost");
}

TEST_F(InstallProcedure, theEmbeddedEngineNeedsNone) {
  EXPECT_EQ(errorOf([&] { db::installQueryAudits("(embedded)", "Korvel_Audit", access_); })->textKey(),
            "failure.procedureBuiltIn");
}

TEST(ScriptBatches, endAtLinesThatSayGo) {
  EXPECT_THAT(db::scriptBatches("a\nGO\nb\n"), ElementsAre("a\n", "b\n"));
  EXPECT_THAT(db::scriptBatches("a\r\n  go \t\r\nb"), ElementsAre("a\r\n", "b"));
  EXPECT_THAT(db::scriptBatches("GO\n\nGO\n \t\nGo"), IsEmpty());
  EXPECT_THAT(db::scriptBatches("GOTO x\n-- GO\nSELECT 'GO'\n"), ElementsAre("GOTO x\n-- GO\nSELECT 'GO'\n"));
  EXPECT_THAT(db::scriptBatches(""), IsEmpty());
}

}  // namespace
}  // namespace korvel::test
