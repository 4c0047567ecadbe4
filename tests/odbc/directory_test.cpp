#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>

#include "db/discovery/configured_servers.h"
#include "db/discovery/network_directory.h"
#include "tests/odbc/wire.h"
#include "tests/tds_server/resolution_responder.h"

namespace korvel::test {
namespace {

using db::NetworkDirectory;
using tds::Answer;
using tds::instanceOn;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

TEST(ConfiguredServers, ofAFreeTdsFile) {
  EXPECT_THAT(db::serversOfFreeTdsConfiguration(
                  "# comment\n[global]\n\thost = nobody\n[plant]\n\tHost = auditsrv\n\tport = 1433\n"
                  "[other]\r\n host=10.0.0.7\r\n port=1500\r\n; x\n[named]\nhost = srv\n"
                  "instance = WINCC\n[empty]\nport = 1\n[broken\nhost = x\n"),
              ElementsAre("auditsrv", "10.0.0.7,1500", "srv\\WINCC"));
  EXPECT_THAT(db::serversOfFreeTdsConfiguration(""), IsEmpty());
}

TEST(ConfiguredServers, samplesAndOtherProductsAreNone) {
  EXPECT_THAT(
      db::serversOfFreeTdsConfiguration("[global]\n\t;tds version = auto\n"
                                        "# an old server of another make\n"
                                        "[sample5]\n\thost = symachine.domain.com\n\tport = 5000\n\ttds version = 5.0\n"
                                        "# one of this make\n"
                                        "[sample7]\n\thost = NTmachine.domain.com\n\tport = 1433\n\ttds version = 7.3\n"
                                        "[old]\n\thost = oldsrv\n\ttds version = 4.2\n"
                                        "[plant]\n\thost = auditsrv\n\ttds version = 7.4\n"
                                        "[office]\n\thost = office\n\ttds version = auto\n"),
      ElementsAre("auditsrv", "office"));
}

TEST(ConfiguredServers, withoutAUsersFolderTheCurrentOneHasNoSay) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / ".odbc.ini", "[Planted]\nDriver = FreeTDS\nServer = planted-odbc\n");
  writeFileAtomically(folder / ".freetds.conf", "[planted]\n\thost = planted-freetds\n");
  const EnvironmentVariable odbcIni("ODBCINI");
  const EnvironmentVariable freeTdsConf("FREETDSCONF");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  for (const char* home : {"", "."}) {
    const EnvironmentVariable noHome("HOME", home);
    EXPECT_THAT(db::configuredServers(), Not(Contains(::testing::StartsWith("planted")))) << home;
  }
  const EnvironmentVariable home("HOME", folder.path().string());
  EXPECT_THAT(db::configuredServers(), ::testing::IsSupersetOf({"planted-odbc", "planted-freetds"}));
  std::filesystem::current_path(before);
}

TEST(ConfiguredServers, ofAnOdbcFile) {
  EXPECT_THAT(
      db::serversOfOdbcConfiguration("[ODBC Data Sources]\nPlant = FreeTDS\n[Plant]\nDriver = FreeTDS\n"
                                     "Server = auditsrv\nPort = 1444\n[Office]\nDriver=ODBC Driver 18 for SQL "
                                     "Server\nServer=tcp:office\\WINCC\n[Maps]\nDriver = PostgreSQL\nServer = maps\n"
                                     "[NoServer]\nDriver = FreeTDS\n"),
      ElementsAre("auditsrv,1444", "tcp:office\\WINCC"));
}

TEST(ConfiguredServers, ofDataSourcesThatNameTheirDriversFile) {
  EXPECT_THAT(db::serversOfOdbcConfiguration("[Old]\nDriver=C:\\Windows\\system32\\SQLSRV32.dll\nServer=old\n"
                                             "[New]\nDriver=C:\\Windows\\system32\\msodbcsql18.dll\nServer=new\n"
                                             "[Books]\nDriver=C:\\Windows\\system32\\odbcjt32.dll\nServer=books\n"),
              ElementsAre("old", "new"));
}

class Directory : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    writeFileAtomically(folder_ / "odbc.ini", "[Plant]\nDriver = FreeTDS\nServer = 127.0.0.1\nPort = 1444\n");
    writeFileAtomically(folder_ / "freetds.conf", "[Other]\n\thost = other.invalid\n");
  }
  NetworkDirectory directory() {
    return {db::ResolutionClient(resolution_.port()),
            [this](const std::string& server, const db::ServerListener& told, const std::stop_token& stop) {
              asked_ = server;
              access_.onEvent = told;
              access_.stop = stop;
              return connect("");
            }};
  }
  /// The events of a listener while databases are listed, a line each: kind, severity, number, state and text.
  std::string toldOf(const db::BrowserOptions& options = db::browserOptions(true)) {
    std::string told;
    auto listing = directory();
    listing.onEvent = [&](const db::ServerEvent& event) {
      constexpr std::array kinds = {"command", "broken", "timeout", "login", "message"};
      told += kinds.at(static_cast<std::size_t>(event.kind));
      if (event.messageNumber != 0)
        told += " " + std::to_string(event.severity) + " " + std::to_string(event.messageNumber) + " " +
                std::to_string(event.messageState);
      told += ": " + event.text + "\n";
    };
    (void)errorOf([&] { (void)listing.databases("AUDITSRV", options); });
    return told;
  }
  /// "name s path" of each database.
  std::vector<std::string> databases() {
    std::vector<std::string> lines;
    for (const auto& database : directory().databases("AUDITSRV", db::browserOptions(false)))
      lines.push_back(database.name + (database.isSystem ? " s " : " - ") + database.path);
    return lines;
  }

  tds::ResolutionResponder resolution_;
  std::string asked_;
  EnvironmentVariable odbcIni_{"ODBCINI", (folder_ / "odbc.ini").string()};
  EnvironmentVariable freeTdsConf_{"FREETDSCONF", (folder_ / "freetds.conf").string()};
  EnvironmentVariable data_{"KORVEL_AUDIT_DATA", folder_.path().string()};
};

TEST_F(Directory, localServersAreThisComputersInstancesAndTheEmbeddedEngine) {
  resolution_.announce({instanceOn("PC7", "MSSQLSERVER", 1433), instanceOn("PC7", "WINCC", 51234)});
  EXPECT_THAT(directory().localServers(), ElementsAre("(embedded)", "PC7", "PC7\\WINCC"));
  resolution_.stayQuiet();
  EXPECT_THAT(directory().localServers(), ElementsAre("(embedded)"));
}

TEST_F(Directory, networkServersAreThoseOfTheConfigurationAndThoseThatAnswer) {
  resolution_.announce({instanceOn("PC7", "WINCC", 51234), instanceOn("pc7", "wincc", 51234)});
  const auto servers = directory().networkServers();
  EXPECT_THAT(servers, Contains("(embedded)"));
  EXPECT_THAT(servers, Contains("127.0.0.1,1444"));
  EXPECT_THAT(servers, Contains("other.invalid"));
  EXPECT_THAT(servers, Contains("PC7\\WINCC"));
  EXPECT_THAT(servers, Not(Contains("pc7\\wincc")));
}

TEST_F(Directory, databasesHaveTheirFlagAndTheirPath) {
  server_.answerOthers([](const tds::Command&) {
    return Answer()
        .result({{"name", "nvarchar(128)"}, {"is_system", "bit"}, {"physical_name", "nvarchar(260)"}})
        .row({"master", 1, "C:\\Data\\master.mdf"})
        .row({"Korvel_Audit", 0, "C:\\Data\\Korvel_Audit.mdf"})
        .row({"korvel_audit_mu", 0, tds::null});
  });
  EXPECT_THAT(databases(), ElementsAre("master s C:\\Data\\master.mdf", "Korvel_Audit - C:\\Data\\Korvel_Audit.mdf",
                                       "korvel_audit_mu - "));
  EXPECT_EQ(asked_, "AUDITSRV");
  EXPECT_EQ(server_.texts().size(), 1U);
}

TEST_F(Directory, serversWithoutTheViewGiveNamesAlone) {
  server_.answerOthers([](const tds::Command& command) {
    if (command.text.find("master_files") != std::string::npos)
      return Answer().error({208, "Invalid object name 'master.sys.master_files'."});
    return Answer()
        .result({{"name", "nvarchar(128)"}, {"is_system", "bit"}})
        .row({"master", 1})
        .row({"Korvel_Audit", 0});
  });
  EXPECT_THAT(databases(), ElementsAre("master s ", "Korvel_Audit - "));
}

TEST_F(Directory, oldServersAreAskedTheOldWay) {
  server_.answerOthers([](const tds::Command& command) {
    if (command.text.find("dbo.sysdatabases") == std::string::npos)
      return Answer().error({208, "Invalid object name 'master.sys.databases'."});
    return Answer().result({{"name", "nvarchar(128)"}, {"s", "int"}}).row({"Korvel_Audit", 0});
  });
  EXPECT_THAT(databases(), ElementsAre("Korvel_Audit - "));
}

TEST_F(Directory, failuresAreReported) {
  server_.answerOthers([](const tds::Command&) { return Answer().error({229, "The SELECT permission was denied."}); });
  EXPECT_EQ(errorOf([&] { (void)databases(); })->number(), 229);
  server_.answerOthers([](const tds::Command&) { return Answer().close(); });
  EXPECT_EQ(errorOf([&] { (void)databases(); })->textKey(), "failure.connectionLost");
  server_.refuseLogin({{18456, "Login failed.", 14}});
  EXPECT_EQ(errorOf([&] { (void)databases(); })->textKey(), "failure.loginRefused");
}

TEST_F(Directory, databasesOfTheEmbeddedEngineAreItsFiles) {
  for (const char* name : {"Korvel_Audit.db", "Alpha.db", "Korvel_Audit.db-wal", "notes.txt"})
    writeFileAtomically(folder_ / name, "");
  std::filesystem::create_directory(folder_ / "folder.db");
  // Names that no connection accepts are not listed.
  writeFileAtomically(folder_ / "a..b.db", "");
  writeFileAtomically(folder_ / ".db.db", "");
  writeFileAtomically(folder_ / "c:x.db", "");
  const auto found = directory().databases("(embedded)", db::browserOptions(false));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].name, "Alpha");
  EXPECT_EQ(found[1].name, "Korvel_Audit");
  EXPECT_FALSE(found[1].isSystem);
  EXPECT_EQ(found[1].path, (folder_ / "Korvel_Audit.db").string());
  const auto refusal = [&](const char* name) {
    return errorOf([&] { (void)directory().databases((folder_ / name).string(), db::browserOptions(false)); })
        ->textKey();
  };
  EXPECT_EQ(refusal("nowhere"), "failure.noFolder");
  EXPECT_EQ(refusal("notes.txt"), "failure.notAFolder");
}

TEST_F(Directory, listenersGetCommandsAndMessages) {
  // This driver does not return the state.
  server_.answerOthers([](const tds::Command&) {
    return Answer()
        .warning({4711, "The statistics are old.", 9, 2})
        .result({{"name", "nvarchar(128)"}, {"is_system", "bit"}, {"physical_name", "nvarchar(260)"}})
        .row({"Korvel_Audit", 0, tds::null});
  });
  const std::string told = toldOf();
  ASSERT_EQ(server_.texts().size(), 1U);
  EXPECT_THAT(told, HasSubstr("command: " + server_.texts()[0] + "\n"));
  EXPECT_THAT(told, HasSubstr("message 9 4711 0: The statistics are old.\n"));
}

TEST_F(Directory, listenersGetEveryCommandThatIsTried) {
  server_.answerOthers([](const tds::Command&) { return Answer().error({208, "Invalid object name."}); });
  const std::string told = toldOf();
  EXPECT_THAT(server_.texts(), ::testing::SizeIs(3));
  for (const std::string& text : server_.texts()) EXPECT_THAT(told, HasSubstr("command: " + text + "\n"));
}

TEST_F(Directory, listenersGetFailures) {
  server_.answerOthers([](const tds::Command&) { return Answer().close(); });
  EXPECT_THAT(toldOf(), HasSubstr("\nbroken: The connection to localhost:"));
  server_.answerOthers([](const tds::Command&) { return Answer().silence(); });
  access_.options.commandTimeout = std::chrono::seconds(1);
  EXPECT_THAT(toldOf(), HasSubstr("\ntimeout: localhost:"));
  server_.refuseLogin({{18456, "Login failed for user 'PLANT\\auditor'.", 14, 8}});
  EXPECT_THAT(toldOf(),
              ::testing::ContainsRegex("login [0-9]+ 18456 [0-9]+: Login failed for user 'PLANT\\\\auditor'[.]\n"));
}

TEST_F(Directory, aConnectionThatBreaksIsOpenedOnceMoreWhereTheOptionsSaySo) {
  for (const bool reconnects : {true, false}) {
    const std::size_t before = server_.record().logins.size();
    std::atomic<int> asked = 0;
    server_.answerOthers([&](const tds::Command&) {
      if (asked++ == 0) return Answer().close();
      return Answer().result({{"name", "nvarchar(128)"}, {"is_system", "bit"}}).row({"Korvel_Audit", 0});
    });
    const auto error = errorOf([&] {
      EXPECT_EQ(directory().databases("AUDITSRV", {true, reconnects, false}).at(0).name, "Korvel_Audit");
    });
    EXPECT_EQ(!error, reconnects);
    EXPECT_EQ(server_.record().logins.size(), before + (reconnects ? 2 : 1));
  }
}

class NamedInstance : public WireTest {};

TEST_F(NamedInstance, isReachedOnItsPort) {
  tds::ResolutionResponder resolution;
  resolution.announce({instanceOn("localhost", "WINCC", server_.port())});
  access_.resolver = db::ResolutionClient(resolution.port());
  const auto opened = db::odbc::openServer("localhost\\WINCC", "Korvel_Audit", access_);
  EXPECT_EQ(server_.record().logins.at(0).database, "Korvel_Audit");
  const auto reason = [&](const char* server) {
    return errorOf([&] { (void)db::odbc::openServer(server, "D", access_); })->textKey();
  };
  EXPECT_EQ(reason("localhost\\NOWHERE"), "failure.instanceUnknown");
  resolution.announce({{{"ServerName", "localhost"}, {"InstanceName", "WINCC"}, {"np", "x"}}});
  EXPECT_EQ(reason("localhost\\WINCC"), "failure.instanceWithoutTcp");
  resolution.stayQuiet();
  EXPECT_EQ(reason("localhost\\WINCC"), "failure.instanceSilent");
}

TEST_F(NamedInstance, aPortThatIsGivenWins) {
  const tds::ResolutionResponder resolution;
  access_.resolver = db::ResolutionClient(resolution.port());
  const auto opened =
      db::odbc::openServer("localhost\\WINCC," + std::to_string(server_.port()), "Korvel_Audit", access_);
  EXPECT_THAT(resolution.requests(), IsEmpty());
}

}  // namespace
}  // namespace korvel::test
