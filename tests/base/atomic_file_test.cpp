#include "base/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/error.h"
#include "base/system_errors.h"
#include "tests/support/temporary_folder.h"

namespace korvel {
namespace {

namespace fs = std::filesystem;

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFile, ReplacesTheTarget) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.txt", "one");
  writeFileAtomically(folder / "a.txt", "two");
  EXPECT_EQ(readFile(folder / "a.txt"), "two");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFile, WithoutCommitLeavesTheTargetAndNothingElse) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.txt", "one");
  {
    AtomicFile file(folder / "a.txt");
    file.write("two");
  }
  EXPECT_EQ(readFile(folder / "a.txt"), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFile, WritersOfOneTargetDoNotMeet) {
  const test::TemporaryFolder folder;
  AtomicFile first(folder / "a.txt");
  AtomicFile second(folder / "a.txt");
  first.write("one");
  second.write("two");
  second.commit();
  first.commit();
  EXPECT_EQ(readFile(folder / "a.txt"), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFile, MissingFolderIsASystemError) {
  const test::TemporaryFolder folder;
  try {
    writeFileAtomically(folder / "none" / "a.txt", "x");
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(isSystemError(error.number(), std::errc::no_such_file_or_directory)) << error.number();
  }
}

}  // namespace
}  // namespace korvel
