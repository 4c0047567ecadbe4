#include <gmock/gmock.h>
#include <sqlite3.h>

#include <fstream>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "demo/demo_database.h"
#include "tests/demo/failures.h"
#include "tests/demo/opened_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::demo {
namespace {

namespace fs = std::filesystem;
using test::OpenedDatabase;
using test::TemporaryFolder;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(DemoFailure, NeverReplacesWithoutForce) {
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit_MU.db"}) {
    const TemporaryFolder folder;
    writeFileAtomically(folder / name, "somebody's evidence");
    const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10}); });
    EXPECT_TRUE(isSystemError(error.number(), std::errc::file_exists));
    EXPECT_THAT(error.description(), HasSubstr(utf8FromPath(folder / name)));
    EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre(name)) << "the other database was not written either";
    EXPECT_EQ(readFile(folder / name), "somebody's evidence");
  }
}

TEST(DemoFailure, ReplacesWithForceAndDropsTheJournalsOfTheOldFile) {
  const TemporaryFolder folder;
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-journal", "Korvel_Audit.db-wal", "Korvel_Audit.db-shm"})
    writeFileAtomically(folder / name, "old");
  writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true});
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("Korvel_Audit.db", "Korvel_Audit_MU.db"));
  EXPECT_EQ(OpenedDatabase(folder / "Korvel_Audit.db").count("true"), 10);
}

TEST(DemoFailure, ReplacesBothWithForceOrNeither) {
  const TemporaryFolder folder;
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-journal"}) writeFileAtomically(folder / name, "old");
  fs::create_directory(folder / "Korvel_Audit_MU.db");
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true}); });
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(error.description(), HasSubstr(utf8FromPath(folder / "Korvel_Audit_MU.db")));
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-journal"})
    EXPECT_EQ(readFile(folder / name), "old") << name;
}

TEST(DemoFailure, KeepsTheJournalOfAFileThatStays) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / "D.db-journal", "old");
  fs::create_directory(folder / "D.db");
  EXPECT_NE(errorOf([&] { writeDemoDatabase(folder / "D.db", 10, 1); }).number(), 0);
  EXPECT_EQ(readFile(folder / "D.db-journal"), "old");
}

TEST(DemoFailure, SaysThatAFolderCannotBeMade) {
  const TemporaryFolder folder;
  writeFileAtomically(folder / "file", "");
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder / "file" / "inside", .rows = 10}); });
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(error.description(), HasSubstr(utf8FromPath(folder / "file" / "inside")));
}

TEST(DemoFailure, LeavesNothingWhereTheTargetIsAFolder) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "Korvel_Audit.db" / "full");
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true}); });
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("Korvel_Audit.db"));
}

TEST(DemoFailure, RefusesMoreRowsThanAnEntryNumberCounts) {
  const TemporaryFolder folder;
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 1'000'000'000}); });
  EXPECT_EQ(error.number(), systemErrorNumber(std::errc::invalid_argument));
  EXPECT_THAT(error.description(), HasSubstr("999999999"));
  EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

}  // namespace
}  // namespace korvel::demo
