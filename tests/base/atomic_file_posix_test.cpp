#include "base/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "base/error.h"
#include "tests/support/temporary_folder.h"

namespace {

int maskChanges = 0;

}  // namespace

// A umask() of the test program that counts its calls: the mask belongs to the process, so a library must not set it.
extern "C" mode_t umask(mode_t mask) noexcept {
  ++maskChanges;
  return static_cast<mode_t>(::syscall(SYS_umask, mask));
}

namespace korvel {
namespace {

namespace fs = std::filesystem;

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFile, KeepsTheTargetsRights) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.txt", "one");
  fs::permissions(folder / "a.txt", fs::perms::owner_read | fs::perms::owner_write);
  writeFileAtomically(folder / "a.txt", "two");
  EXPECT_EQ(fs::status(folder / "a.txt").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(AtomicFile, ANewFileGetsTheRightsThatTheUsersMaskAllows) {
  const test::TemporaryFolder folder;
  const mode_t before = ::umask(027);
  maskChanges = 0;
  writeFileAtomically(folder / "a.txt", "one");
  EXPECT_EQ(maskChanges, 0);
  ::umask(before);
  EXPECT_EQ(fs::status(folder / "a.txt").permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(AtomicFile, AnIncompleteFileCannotBeReadByOthers) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.txt", "one");
  fs::permissions(folder / "a.txt", fs::perms::owner_read | fs::perms::owner_write);
  const AtomicFile file(folder / "a.txt");
  for (const auto& entry : fs::directory_iterator(folder.path()))
    EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write) << entry.path();
  EXPECT_EQ(filesIn(folder.path()), 2U);
}

TEST(AtomicFile, WritesThroughALink) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "real.txt", "one");
  fs::create_symlink("real.txt", folder / "link.txt");
  writeFileAtomically(folder / "link.txt", "two");
  EXPECT_TRUE(fs::is_symlink(folder / "link.txt"));
  EXPECT_EQ(readFile(folder / "real.txt"), "two");
}

TEST(AtomicFile, ReplacesALinkOnRequest) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "real.txt", "one");
  fs::create_symlink("real.txt", folder / "link.txt");
  AtomicFile file(folder / "link.txt", SymlinkPolicy::replace);
  file.write("two");
  file.commit();
  EXPECT_FALSE(fs::is_symlink(folder / "link.txt"));
  EXPECT_EQ(readFile(folder / "link.txt"), "two");
  EXPECT_EQ(readFile(folder / "real.txt"), "one");
}

TEST(AtomicFile, FullDiskLeavesTheEarlierFile) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.txt", "one");
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 4096;
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &small);
  int number = 0;
  try {
    writeFileAtomically(folder / "a.txt", std::string(10000, 'x'));
  } catch (const Error& error) {
    number = error.number();
  }
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(number, EFBIG);
  EXPECT_EQ(readFile(folder / "a.txt"), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

}  // namespace
}  // namespace korvel
