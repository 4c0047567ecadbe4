#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "db/connection_state.h"
#include "db/embedded/embedded_connection.h"
#include "db/open_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using namespace std::string_literals;
using test::EnvironmentVariable;

TEST(EmbeddedServer, isItsNameOrAnAbsoluteFolder) {
  for (const char* server : {"(embedded)", "(Embedded)", "/srv/audit", "/"})
    EXPECT_TRUE(isEmbeddedServer(server)) << server;
  for (const char* server : {"", "embedded", "AUDITSRV", "(local)", "./audit", "AUDITSRV\\PLANT", "(None)"})
    EXPECT_FALSE(isEmbeddedServer(server)) << server;
}

TEST(EmbeddedFolder, isTheNamedOne) {
  const EnvironmentVariable named("KORVEL_AUDIT_DATA", "/srv/audit");
  EXPECT_EQ(embeddedFolder(), "/srv/audit");
  EXPECT_EQ(embeddedFolderOf("(EMBEDDED)"), "/srv/audit");
  EXPECT_EQ(embeddedFolderOf("/elsewhere"), "/elsewhere");
}

TEST(EmbeddedFolder, isOtherwiseInTheUsersDataFolder) {
  const EnvironmentVariable none("KORVEL_AUDIT_DATA");
  const EnvironmentVariable home("HOME", "/home/ann");
  {
    const EnvironmentVariable data("XDG_DATA_HOME", "/data/ann");
    EXPECT_EQ(embeddedFolder(), "/data/ann/korvel/audit");
  }
  {
    const EnvironmentVariable relative("XDG_DATA_HOME", "data");
    EXPECT_EQ(embeddedFolder(), "/home/ann/.local/share/korvel/audit");
  }
  const EnvironmentVariable noData("XDG_DATA_HOME");
  EXPECT_EQ(embeddedFolder(), "/home/ann/.local/share/korvel/audit");
}

TEST(EmbeddedFolder, emptyVariableCountsAsNone) {
  const EnvironmentVariable empty("KORVEL_AUDIT_DATA", "");
  const EnvironmentVariable data("XDG_DATA_HOME", "/data/ann");
  EXPECT_EQ(embeddedFolder(), "/data/ann/korvel/audit");
}

TEST(EmbeddedFolder, withoutAWorkingFolderIsAFailureInWords) {
  const auto before = std::filesystem::current_path();
  const EnvironmentVariable relative("KORVEL_AUDIT_DATA", "audit");
  std::optional<Error> error;
  {
    const test::TemporaryFolder gone;
    std::filesystem::current_path(gone.path());
    std::filesystem::remove(gone.path());
    error = test::errorOf([] { (void)embeddedFolder(); });
    EXPECT_TRUE(test::errorOf([] { (void)openEmbedded("audit", "Korvel_Audit"); }));
  }
  std::filesystem::current_path(before);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.noFolder");
  EXPECT_EQ(embeddedFolder(), before / "audit");
}

TEST(EmbeddedFolder, thatCannotBeListedHasItsOwnReason) {
  EXPECT_EQ(folderFailure("/x", ENOENT).textKey(), "failure.noFolder");
  EXPECT_EQ(folderFailure("/x", ENOTDIR).textKey(), "failure.notAFolder");
  EXPECT_EQ(folderFailure("/x", EACCES).textKey(), "failure.folderDenied");
  EXPECT_EQ(folderFailure("/x", EIO).textKey(), "failure.folderUnreadable");
  EXPECT_EQ(folderFailure("/x", EIO).number(), EIO);
}

TEST(EmbeddedDatabaseFile, isTheNameWithItsEnding) {
  EXPECT_EQ(embeddedDatabaseFile("/srv/audit", "Korvel_Audit"), "/srv/audit/Korvel_Audit.db");
  EXPECT_EQ(embeddedDatabaseFile("/srv/audit", "Anlage Süd (alt)"), "/srv/audit/Anlage Süd (alt).db");
}

TEST(EmbeddedDatabaseFile, refusesMoreThanAName) {
  for (const std::string& name : {""s, "."s, ".."s, "../x"s, "a/b"s, "/etc/x"s, "a\\b"s, "a..b"s, ".hidden"s, "x\0y"s,
                                  "c:x"s, "a\nb"s, std::string(129, 'a')}) {
    const auto error = test::errorOf([&] { (void)embeddedDatabaseFile("/srv/audit", name); });
    ASSERT_TRUE(error) << name;
    EXPECT_EQ(error->description().find('\0'), std::string::npos);
  }
}

TEST(OpenConnection, opensTheEmbeddedEngineByItsNameOrFolder) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "Korvel_Audit.db", {{7, "2004-03-07 13:45:59.123", "T", "E", "CS"}});
  const EnvironmentVariable data("KORVEL_AUDIT_DATA", folder.path());
  for (const std::string& server : {"(embedded)"s, folder.path().string()}) {
    const auto connection = openConnection(buildConnectionString(server, "Korvel_Audit"));
    EXPECT_EQ(test::answerText(*connection, "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n7\n");
  }
}

TEST(OpenConnection, opensAFolderWhoseNameNeedsCare) {
  const test::TemporaryFolder folder;
  const auto odd = folder / "50% #1 ? süß";
  std::filesystem::create_directory(odd);
  test::writeAuditDatabase(odd / "Korvel_Audit.db", {});
  test::DatabaseWriter(odd / "Korvel_Audit.db").run("PRAGMA journal_mode=WAL");
  const auto connection = openConnection(buildConnectionString(odd.string(), "Korvel_Audit"));
  EXPECT_EQ(test::answerText(*connection, "SELECT count(*) AS n FROM Korvel_Audit_Trails"), "n\n0\n");
}

TEST(OpenConnection, saysPlainlyWhatIsNoServer) {
  const auto error = test::errorOf([] { (void)openConnection(buildConnectionString("AUDIT SRV", "Korvel_Audit")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.noHostName");
  EXPECT_NE(error->description().find("AUDIT SRV"), std::string::npos);
}

}  // namespace
}  // namespace korvel::db
