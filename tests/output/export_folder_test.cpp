#include "output/export_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using test::EnvironmentVariable;

struct ExportFolder : testing::Test {
  int failure() {
    try {
      static_cast<void>(exportPath("velview.txt"));
      return 0;
    } catch (const Error& error) {
      return error.number();
    }
  }
  static unsigned modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
  }

  test::TemporaryFolder home;
  EnvironmentVariable noWindir{"windir"};
  EnvironmentVariable state{"XDG_STATE_HOME", (home / "state").string()};
};

TEST_F(ExportFolder, IsTheOneThatWindirNames) {
  const EnvironmentVariable windir("windir", home.path().string());
  EXPECT_EQ(exportPath("velview.txt"), home / "velview.txt");
  EXPECT_FALSE(fs::exists(home / "state"));
}

TEST_F(ExportFolder, WithoutWindirIsTheUsersOwn) {
  EXPECT_EQ(exportPath("report.htm"), home / "state/korvel/export/report.htm");
  EXPECT_EQ(modeOf(home / "state/korvel/export"), 0700U);
  EXPECT_EQ(failure(), 0) << "the second time";
}

TEST_F(ExportFolder, WithoutAStateFolderStandsInTheHome) {
  const EnvironmentVariable noState("XDG_STATE_HOME");
  const EnvironmentVariable homeFolder("HOME", home.path().string());
  EXPECT_EQ(exportPath("report.htm"), home / ".local/state/korvel/export/report.htm");
}

TEST_F(ExportFolder, IsTakenFromOthers) {
  fs::create_directories(home / "state/korvel/export");
  ASSERT_EQ(::chmod((home / "state/korvel").c_str(), 0777), 0);
  ASSERT_EQ(::chmod((home / "state/korvel/export").c_str(), 0755), 0);
  EXPECT_EQ(failure(), 0);
  EXPECT_EQ(modeOf(home / "state/korvel"), 0755U);
  EXPECT_EQ(modeOf(home / "state/korvel/export"), 0700U);
}

TEST_F(ExportFolder, IsNotReachedThroughALink) {
  fs::create_directories(home / "elsewhere");
  fs::create_directories(home / "state/korvel");
  fs::create_directory_symlink(home / "elsewhere", home / "state/korvel/export");
  EXPECT_NE(failure(), 0);
  EXPECT_TRUE(fs::is_empty(home / "elsewhere"));
}

TEST_F(ExportFolder, OfAnotherUserIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  fs::create_directories(home / "state/korvel/export");
  ASSERT_EQ(::chown((home / "state/korvel/export").c_str(), 12345, 12345), 0);
  EXPECT_EQ(failure(), numberOf(FileError::permissionDenied));
}

TEST_F(ExportFolder, WithAFileInItsPlaceIsAMissingPath) {
  fs::create_directories(home / "state");
  writeFileAtomically(home / "state/korvel", "x");
  EXPECT_EQ(failure(), numberOf(FileError::pathNotFound));
}

}  // namespace
}  // namespace korvel::output
