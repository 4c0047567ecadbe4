#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "db/connection_state.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/embedded_folder.h"
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

TEST(EmbeddedFolder, mayBeginWithTwoSeparators) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "D.db", {});
  // A database with a log is opened by a URI, in which two slashes precede the name of a server.
  test::DatabaseWriter(folder / "D.db").run("PRAGMA journal_mode=WAL");
  const auto connection = openEmbedded("/" + folder.path().string(), "D");
  EXPECT_EQ(test::answerText(*connection, "SELECT count(*) AS n FROM Korvel_Audit_Trails"), "n\n0\n");
}

TEST(EmbeddedDatabaseFile, isTheNameWithItsEnding) {
  EXPECT_EQ(embeddedDatabaseFile("/srv/audit", "Korvel_Audit"), "/srv/audit/Korvel_Audit.db");
  EXPECT_EQ(embeddedDatabaseFile("/srv/audit", "Anlage Süd (alt)"), "/srv/audit/Anlage Süd (alt).db");
}

}  // namespace
}  // namespace korvel::db
