#include <gtest/gtest.h>
#include <sqlite3.h>
#include <windows.h>

#include <algorithm>
#include <optional>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "db/connection_state.h"
#include "db/connection_string.h"
#include "db/discovery/configured_servers.h"
#include "db/discovery/network_directory.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/embedded_folder.h"
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
  writeFileAtomically(folder / "Alt.DB", "");
  writeFileAtomically(folder / "Neu.db", "");
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

/// A data source in the registry, removed with the object.
class DataSource {
 public:
  DataSource(HKEY root, const std::wstring& server, REGSAM half = 0) : root_(root), half_(half) {
    HKEY key = nullptr;
    isThere_ = RegCreateKeyExW(root, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | half, nullptr, &key, nullptr) ==
               ERROR_SUCCESS;
    if (!isThere_) return;
    const auto set = [key](const wchar_t* name, const std::wstring& value) {
      RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                     static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    };
    set(L"Driver", L"C:\\Windows\\system32\\msodbcsql18.dll");
    set(L"Server", server);
    RegCloseKey(key);
  }
  ~DataSource() {
    if (isThere_) RegDeleteKeyExW(root_, path_.c_str(), half_, 0);
  }
  DataSource(const DataSource&) = delete;
  DataSource& operator=(const DataSource&) = delete;

  [[nodiscard]] bool isThere() const { return isThere_; }

 private:
  HKEY root_;
  REGSAM half_;
  std::wstring path_ = L"SOFTWARE\\ODBC\\ODBC.INI\\KorvelTestSource";
  bool isThere_ = false;
};

auto timesConfigured(const std::string& server) {
  const auto servers = configuredServers();
  return std::count(servers.begin(), servers.end(), server);
}

TEST(ConfiguredServersOnWindows, AreThoseOfTheUsersDataSources) {
  const DataSource source(HKEY_CURRENT_USER, L"PLANTSRV\\AUDIT");
  ASSERT_TRUE(source.isThere());
  EXPECT_EQ(timesConfigured("PLANTSRV\\AUDIT"), 1);
}

TEST(ConfiguredServersOnWindows, AreAlsoThoseOfTheMachinesProgramsOf32Bits) {
  const DataSource source(HKEY_LOCAL_MACHINE, L"PLANTSRV\\AUDIT32", KEY_WOW64_32KEY);
  if (!source.isThere()) GTEST_SKIP() << "only administrators give the machine data sources";
  EXPECT_EQ(timesConfigured("PLANTSRV\\AUDIT32"), 1);
}

TEST(ConfiguredServersOnWindows, AreNamedOnce) {
  const DataSource users(HKEY_CURRENT_USER, L"PLANTSRV\\AUDIT");
  const DataSource machines(HKEY_LOCAL_MACHINE, L"PLANTSRV\\AUDIT", KEY_WOW64_64KEY);
  const DataSource ofOldPrograms(HKEY_LOCAL_MACHINE, L"plantsrv\\audit", KEY_WOW64_32KEY);
  if (!machines.isThere() || !ofOldPrograms.isThere())
    GTEST_SKIP() << "only administrators give the machine data sources";
  EXPECT_EQ(timesConfigured("PLANTSRV\\AUDIT"), 1);
  EXPECT_EQ(timesConfigured("plantsrv\\audit"), 0);
}

}  // namespace
}  // namespace korvel::db
