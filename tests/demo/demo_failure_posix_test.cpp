#include <gmock/gmock.h>
#include <sqlite3.h>

#include <cerrno>
#include <fstream>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "demo/demo_database.h"
#include "tests/demo/failures.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"

namespace korvel::demo {
namespace {

namespace fs = std::filesystem;
using test::FullDisk;
using test::TemporaryFolder;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Less than the size of the tests' databases.
constexpr rlim_t diskBytes = 262144;

TEST(DemoFailure, CountsALinkWithoutTargetAsAFile) {
  const TemporaryFolder folder;
  fs::create_symlink(folder / "elsewhere.db", folder / "Korvel_Audit.db");
  EXPECT_EQ(errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10}); }).number(), EEXIST);
  EXPECT_FALSE(fs::exists(folder / "elsewhere.db"));
}

TEST(DemoFailure, SaysThatAFolderCannotBeWritten) {
  // Root cannot write there either.
  const Error error = errorOf([] { writeDemoDatabases({.folder = "/proc/self", .rows = 10}); });
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(error.description(), HasSubstr("/proc/self"));
}

TEST(DemoFailure, LeavesNothingOnAFullDisk) {
  const TemporaryFolder folder;
  Error error{0, "no error"};
  {
    const FullDisk disk(diskBytes);
    error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 20000}); });
  }
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(error.description(), HasSubstr("cannot write the database"));
  EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

TEST(DemoFailure, KeepsTheOldDatabaseOnAFullDisk) {
  const TemporaryFolder folder;
  writeDemoDatabase(folder / "kept.db", 50, 1);
  const std::string before = readFile(folder / "kept.db");
  {
    const FullDisk disk(diskBytes);
    EXPECT_NE(errorOf([&] { writeDemoDatabase(folder / "kept.db", 20000, 1); }).number(), 0);
  }
  EXPECT_EQ(readFile(folder / "kept.db"), before);
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("kept.db"));
}

}  // namespace
}  // namespace korvel::demo
