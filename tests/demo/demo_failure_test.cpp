#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/whole_file.h"
#include "demo/demo_database.h"
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

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

/// Less than the databases of these tests take.
constexpr rlim_t diskBytes = 262144;

/// The error that an action ends with; number 0 where it ends well.
template <typename Action>
Error errorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return {0, "no error"};
}

/// While it lives, no file of this process grows beyond so many bytes: what a full disk looks like to a writer.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST(DemoFailure, NeverReplacesWithoutForce) {
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit_MU.db"}) {
    const TemporaryFolder folder;
    writeWholeFile(folder / name, "somebody's evidence");
    const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10}); });
    EXPECT_EQ(error.number(), EEXIST);
    EXPECT_THAT(error.description(), HasSubstr((folder / name).string()));
    EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre(name)) << "the other database was not written either";
    EXPECT_EQ(readWholeFile(folder / name), "somebody's evidence");
  }
}

TEST(DemoFailure, CountsALinkToNowhereAsSomebodysFile) {
  const TemporaryFolder folder;
  fs::create_symlink(folder / "elsewhere.db", folder / "Korvel_Audit.db");
  EXPECT_EQ(errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10}); }).number(), EEXIST);
  EXPECT_FALSE(fs::exists(folder / "elsewhere.db"));
}

TEST(DemoFailure, ReplacesWithForceAndDropsTheJournalsOfTheOldFile) {
  const TemporaryFolder folder;
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-journal", "Korvel_Audit.db-wal", "Korvel_Audit.db-shm"})
    writeWholeFile(folder / name, "old");
  writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true});
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("Korvel_Audit.db", "Korvel_Audit_MU.db"));
  EXPECT_EQ(OpenedDatabase(folder / "Korvel_Audit.db").count("true"), 10);
}

TEST(DemoFailure, SaysThatAFolderCannotBeMade) {
  const TemporaryFolder folder;
  writeWholeFile(folder / "file", "");
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder / "file" / "inside", .rows = 10}); });
  EXPECT_EQ(error.number(), ENOTDIR);
  EXPECT_THAT(error.description(), HasSubstr("file/inside"));
}

TEST(DemoFailure, SaysThatAFolderCannotBeWritten) {
  // Not even root writes there.
  const Error error = errorOf([] { writeDemoDatabases({.folder = "/proc/self", .rows = 10}); });
  EXPECT_NE(error.number(), 0);
  EXPECT_THAT(error.description(), HasSubstr("/proc/self"));
}

TEST(DemoFailure, LeavesNothingWhereTheTargetIsAFolder) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "Korvel_Audit.db" / "full");
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true}); });
  EXPECT_EQ(error.number(), EISDIR);
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("Korvel_Audit.db"));
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
  const std::string before = readWholeFile(folder / "kept.db");
  {
    const FullDisk disk(diskBytes);
    EXPECT_NE(errorOf([&] { writeDemoDatabase(folder / "kept.db", 20000, 1); }).number(), 0);
  }
  EXPECT_EQ(readWholeFile(folder / "kept.db"), before);
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("kept.db"));
}

TEST(DemoFailure, RefusesMoreRowsThanAnEntryNumberCounts) {
  const TemporaryFolder folder;
  const Error error = errorOf([&] { writeDemoDatabases({.folder = folder.path(), .rows = 1'000'000'000}); });
  EXPECT_EQ(error.number(), EINVAL);
  EXPECT_THAT(error.description(), HasSubstr("999999999"));
  EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

}  // namespace
}  // namespace korvel::demo
