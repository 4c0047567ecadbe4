#include "db/discovery/configured_servers.h"
#include "db/discovery/network_directory.h"
#include "tests/odbc/wire.h"
#include "tests/support/tds/resolution_peer.h"

namespace korvel::test {
namespace {

using db::NetworkDirectory;
using tds::Answer;
using tds::instanceOn;
using ::testing::Contains;
using ::testing::ElementsAre;
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

TEST(ConfiguredServers, ofAnOdbcFile) {
  EXPECT_THAT(
      db::serversOfOdbcConfiguration("[ODBC Data Sources]\nPlant = FreeTDS\n[Plant]\nDriver = FreeTDS\n"
                                     "Server = auditsrv\nPort = 1444\n[Office]\nDriver=ODBC Driver 18 for SQL "
                                     "Server\nServer=tcp:office\\WINCC\n[Maps]\nDriver = PostgreSQL\nServer = maps\n"
                                     "[NoServer]\nDriver = FreeTDS\n"),
      ElementsAre("auditsrv,1444", "tcp:office\\WINCC"));
}

class Directory : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    writeWholeFile(folder_ / "odbc.ini", "[Plant]\nDriver = FreeTDS\nServer = 127.0.0.1\nPort = 1444\n");
    writeWholeFile(folder_ / "freetds.conf", "[Other]\n\thost = other.invalid\n");
  }
  NetworkDirectory directory() {
    return {db::ResolutionClient(resolution_.port()), [this](const std::string& server) {
              asked_ = server;
              return connect("");
            }};
  }
  /// "name s path" of each database.
  std::vector<std::string> databases() {
    std::vector<std::string> lines;
    for (const auto& database : directory().databases("AUDITSRV"))
      lines.push_back(database.name + (database.isSystem ? " s " : " - ") + database.path);
    return lines;
  }

  tds::ResolutionPeer resolution_;
  std::string asked_;
  EnvironmentVariable odbcIni_{"ODBCINI", (folder_ / "odbc.ini").string()};
  EnvironmentVariable freeTdsConf_{"FREETDSCONF", (folder_ / "freetds.conf").string()};
  EnvironmentVariable data_{"KORVEL_AUDIT_DATA", folder_.path().string()};
};

TEST_F(Directory, localServersAreThisComputersInstancesAndTheEmbeddedEngine) {
  resolution_.announce({instanceOn("PC7", "MSSQLSERVER", 1433), instanceOn("PC7", "WINCC", 51234)});
  EXPECT_THAT(directory().localServers(), ElementsAre("(embedded)", "PC7", "PC7\\WINCC"));
  resolution_.keepQuiet();
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
  peer_.answerOthers([](const tds::Command&) {
    return Answer()
        .result({{"name", "nvarchar(128)"}, {"is_system", "bit"}, {"physical_name", "nvarchar(260)"}})
        .row({"master", 1, "C:\\Data\\master.mdf"})
        .row({"Korvel_Audit", 0, "C:\\Data\\Korvel_Audit.mdf"})
        .row({"korvel_audit_mu", 0, tds::null});
  });
  EXPECT_THAT(databases(), ElementsAre("master s C:\\Data\\master.mdf", "Korvel_Audit - C:\\Data\\Korvel_Audit.mdf",
                                       "korvel_audit_mu - "));
  EXPECT_EQ(asked_, "AUDITSRV");
  EXPECT_EQ(peer_.texts().size(), 1U);
}

TEST_F(Directory, serversWithoutTheViewGiveNamesAlone) {
  peer_.answerOthers([](const tds::Command& command) {
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
  peer_.answerOthers([](const tds::Command& command) {
    if (command.text.find("dbo.sysdatabases") == std::string::npos)
      return Answer().error({208, "Invalid object name 'master.sys.databases'."});
    return Answer().result({{"name", "nvarchar(128)"}, {"s", "int"}}).row({"Korvel_Audit", 0});
  });
  EXPECT_THAT(databases(), ElementsAre("Korvel_Audit - "));
}

TEST_F(Directory, failuresAreTold) {
  peer_.answerOthers([](const tds::Command&) { return Answer().error({229, "The SELECT permission was denied."}); });
  EXPECT_EQ(errorOf([&] { (void)databases(); })->number(), 229);
  peer_.answerOthers([](const tds::Command&) { return Answer().close(); });
  EXPECT_EQ(errorOf([&] { (void)databases(); })->textKey(), "failure.connectionLost");
  peer_.refuseLogin({{18456, "Login failed.", 14}});
  EXPECT_EQ(errorOf([&] { (void)databases(); })->textKey(), "failure.loginRefused");
}

TEST_F(Directory, databasesOfTheEmbeddedEngineAreItsFiles) {
  for (const char* name : {"Korvel_Audit.db", "Alpha.db", "Korvel_Audit.db-wal", "notes.txt"})
    writeWholeFile(folder_ / name, "");
  std::filesystem::create_directory(folder_ / "folder.db");
  const auto found = directory().databases("(embedded)");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].name, "Alpha");
  EXPECT_EQ(found[1].name, "Korvel_Audit");
  EXPECT_FALSE(found[1].isSystem);
  EXPECT_EQ(found[1].path, (folder_ / "Korvel_Audit.db").string());
  EXPECT_EQ(errorOf([&] { (void)directory().databases((folder_ / "nowhere").string()); })->textKey(),
            "failure.noFolder");
}

class NamedInstance : public WireTest {};

TEST_F(NamedInstance, isReachedOnItsPort) {
  tds::ResolutionPeer resolution;
  resolution.announce({instanceOn("localhost", "WINCC", peer_.port())});
  access_.resolver = db::ResolutionClient(resolution.port());
  const auto opened = db::odbc::openServer("localhost\\WINCC", "Korvel_Audit", access_);
  EXPECT_EQ(peer_.record().logins.at(0).database, "Korvel_Audit");
  EXPECT_EQ(errorOf([&] { (void)db::odbc::openServer("localhost\\NOWHERE", "D", access_); })->textKey(),
            "failure.instanceUnknown");
}

TEST_F(NamedInstance, aPortThatIsGivenWins) {
  const tds::ResolutionPeer resolution;
  access_.resolver = db::ResolutionClient(resolution.port());
  const auto opened = db::odbc::openServer("localhost\\WINCC," + std::to_string(peer_.port()), "Korvel_Audit", access_);
  EXPECT_THAT(resolution.requests(), IsEmpty());
}

}  // namespace
}  // namespace korvel::test
