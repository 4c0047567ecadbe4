#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "base/paths.h"
#include "base/system_errors.h"
#include "db/connection_state.h"
#include "db/connection_string.h"
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

TEST(EmbeddedFolder, thatCannotBeListedHasItsOwnReason) {
  EXPECT_EQ(folderFailure("/x", systemErrorNumber(std::errc::no_such_file_or_directory)).textKey(), "failure.noFolder");
  EXPECT_EQ(folderFailure("/x", systemErrorNumber(std::errc::not_a_directory)).textKey(), "failure.notAFolder");
  EXPECT_EQ(folderFailure("/x", systemErrorNumber(std::errc::permission_denied)).textKey(), "failure.folderDenied");
  EXPECT_EQ(folderFailure("/x", systemErrorNumber(std::errc::io_error)).textKey(), "failure.folderUnreadable");
  EXPECT_EQ(folderFailure("/x", systemErrorNumber(std::errc::io_error)).number(),
            systemErrorNumber(std::errc::io_error));
}

TEST(EmbeddedDatabaseFile, refusesMoreThanAName) {
  for (const std::string& name : {""s, "."s, ".."s, "../x"s, "a/b"s, "/etc/x"s, "a\\b"s, "a..b"s, ".hidden"s, "x\0y"s,
                                  "c:x"s, "a\nb"s, std::string(129, 'a')}) {
    const auto error = test::errorOf([&] { (void)embeddedDatabaseFile("/srv/audit", name); });
    ASSERT_TRUE(error) << name;
    EXPECT_EQ(error->description().find('\0'), std::string::npos);
  }
}

TEST(EmbeddedDatabaseFile, aNameMayBeAsLongAsAServersDatabase) {
  const std::string longest(128, 'a');
  EXPECT_TRUE(isEmbeddedDatabaseName(longest));
  EXPECT_EQ(embeddedDatabaseFile("/srv/audit", longest), std::filesystem::path("/srv/audit") / (longest + ".db"));
  EXPECT_FALSE(isEmbeddedDatabaseName(longest + "a"));
}

TEST(OpenConnection, opensTheEmbeddedEngineByItsNameOrFolder) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "Korvel_Audit.db", {{7, "2004-03-07 13:45:59.123", "T", "E", "CS"}});
  const EnvironmentVariable data("KORVEL_AUDIT_DATA", utf8FromPath(folder.path()));
  for (const std::string& server : {"(embedded)"s, utf8FromPath(folder.path())}) {
    const auto connection = openConnection(buildConnectionString(server, "Korvel_Audit"));
    EXPECT_EQ(test::answerText(*connection, "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n7\n");
  }
}

TEST(OpenConnection, opensAFolderWhoseNameNeedsCare) {
  const test::TemporaryFolder folder;
  const auto odd = folder / pathFromUtf8("50% #1 & süß");
  std::filesystem::create_directory(odd);
  test::writeAuditDatabase(odd / "Korvel_Audit.db", {});
  test::DatabaseWriter(odd / "Korvel_Audit.db").run("PRAGMA journal_mode=WAL");
  const auto connection = openConnection(buildConnectionString(utf8FromPath(odd), "Korvel_Audit"));
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
