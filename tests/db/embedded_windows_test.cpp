#include <gtest/gtest.h>
#include <sqlite3.h>
#include <windows.h>

#include <optional>

#include "base/error.h"
#include "base/paths.h"
#include "base/whole_file.h"
#include "db/connection_state.h"
#include "db/discovery/configured_servers.h"
#include "db/discovery/network_directory.h"
#include "db/embedded/embedded_connection.h"
#include "db/open_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/deep_folder.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using test::EnvironmentVariable;

TEST(EmbeddedOnWindows, IsItsNameOrAnAbsoluteFolder) {
  for (const char* server : {"(embedded)", "(Embedded)", "C:\\audit", "d:/audit", "C:\\", "\\\\server\\share\\audit"})
    EXPECT_TRUE(isEmbeddedServer(server)) << server;
  for (const char* server :
       {"", "embedded", "AUDITSRV", "(local)", "AUDITSRV\\PLANT", "C:audit", "\\audit", ".\\PLANT"})
    EXPECT_FALSE(isEmbeddedServer(server)) << server;
}

TEST(EmbeddedOnWindows, FolderIsAmongTheUsersData) {
  const EnvironmentVariable none("KORVEL_AUDIT_DATA");
  const std::filesystem::path folder = embeddedFolder();
  EXPECT_TRUE(folder.is_absolute());
  EXPECT_TRUE(utf8FromPath(folder).ends_with("\\korvel\\audit")) << utf8FromPath(folder);
  const EnvironmentVariable named("KORVEL_AUDIT_DATA", "C:\\Prüfpfade");
  EXPECT_EQ(utf8FromPath(embeddedFolder()), "C:\\Prüfpfade");
}

TEST(EmbeddedOnWindows, FolderMayBeOneOfTheNetwork) {
  for (const char* folder : {"\\\\server\\share\\audit", "//server/share/audit"}) {
    const EnvironmentVariable named("KORVEL_AUDIT_DATA", folder);
    EXPECT_EQ(utf8FromPath(embeddedFolder()), folder);
  }
}

TEST(EmbeddedOnWindows, DatabaseOfTheNetworkIsNamedAsItIs) {
  const auto error = test::errorOf([] { (void)openEmbedded(L"\\\\?\\C:\\absent", "D"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "db.fileMissing");
  EXPECT_EQ(error->textArguments().at(0), "\\\\?\\C:\\absent\\D.db");
}

TEST(EmbeddedOnWindows, DatabasesAreOfferedWhateverTheCaseOfTheirExtension) {
  const test::TemporaryFolder folder;
  writeWholeFile(folder / "Alt.DB", "");
  writeWholeFile(folder / "Neu.db", "");
  const auto found = makeServerDirectory()->databases(utf8FromPath(folder.path()), browserOptions(false));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].name, "Alt");
  EXPECT_EQ(found[1].name, "Neu");
}

TEST(EmbeddedOnWindows, DatabaseFileIsInItsFolder) {
  EXPECT_EQ(utf8FromPath(embeddedDatabaseFile(pathFromUtf8("C:\\audit"), "Anlage Süd (alt)")),
            "C:\\audit\\Anlage Süd (alt).db");
  EXPECT_TRUE(test::errorOf([] { (void)embeddedDatabaseFile("C:\\audit", "a:b"); }));
}

TEST(EmbeddedOnWindows, OpensADatabaseInADeepFolder) {
  const test::DeepFolder folder;
  test::writeAuditDatabase(folder / pathFromUtf8("Prüfpfad Süd.db"), {{7, "2004-03-07 13:45:59.123", "T", "E", "CS"}});
  const std::string connectionString = buildConnectionString(utf8FromPath(folder.path()), "Prüfpfad Süd");
  EXPECT_EQ(test::answerText(*openConnection(connectionString), "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n7\n");
  test::DatabaseWriter(folder / pathFromUtf8("Prüfpfad Süd.db")).run("PRAGMA journal_mode=WAL");
  EXPECT_EQ(test::answerText(*openConnection(connectionString), "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n7\n");
}

TEST(EmbeddedOnWindows, SaysThatADeepDatabaseIsMissing) {
  const test::DeepFolder folder;
  const auto error = test::errorOf([&] { (void)openEmbedded(folder.path(), "D"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "db.fileMissing");
  EXPECT_EQ(error->textArguments().at(0), utf8FromPath(folder / "D.db")) << "as a person knows it";
}

TEST(EmbeddedOnWindows, SaysWhereAnotherProgramKeepsTheFileToItself) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "D.db", {});
  const test::LockedFile locked(folder / "D.db");
  ASSERT_TRUE(locked.isLocked());
  const auto error = test::errorOf([&] { (void)openEmbedded(folder.path(), "D"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number() & 0xff, SQLITE_CANTOPEN);
  EXPECT_NE(error->description().find(utf8FromPath(folder / "D.db")), std::string::npos) << error->description();
}

TEST(ConfiguredServersOnWindows, AreThoseOfTheUsersDataSources) {
  const std::wstring path = L"SOFTWARE\\ODBC\\ODBC.INI\\KorvelTestSource";
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  const auto set = [key](const wchar_t* name, const std::wstring& value) {
    RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  };
  set(L"Driver", L"C:\\Windows\\system32\\msodbcsql18.dll");
  set(L"Server", L"PLANTSRV\\AUDIT");
  RegCloseKey(key);
  const auto servers = configuredServers();
  RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
  EXPECT_NE(std::find(servers.begin(), servers.end(), "PLANTSRV\\AUDIT"), servers.end());
}

}  // namespace
}  // namespace korvel::db
