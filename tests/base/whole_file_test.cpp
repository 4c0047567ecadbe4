#include "base/whole_file.h"

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

TEST(WholeFile, ReplacesTheTarget) {
  const test::TemporaryFolder folder;
  writeWholeFile(folder / "a.txt", "one");
  writeWholeFile(folder / "a.txt", "two");
  EXPECT_EQ(readWholeFile(folder / "a.txt"), "two");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFile, WithoutCommitLeavesTheTargetAndNothingElse) {
  const test::TemporaryFolder folder;
  writeWholeFile(folder / "a.txt", "one");
  {
    WholeFile file(folder / "a.txt");
    file.write("two");
  }
  EXPECT_EQ(readWholeFile(folder / "a.txt"), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFile, WritersOfOneTargetDoNotMeet) {
  const test::TemporaryFolder folder;
  WholeFile first(folder / "a.txt");
  WholeFile second(folder / "a.txt");
  first.write("one");
  second.write("two");
  second.commit();
  first.commit();
  EXPECT_EQ(readWholeFile(folder / "a.txt"), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFile, MissingFolderIsASystemError) {
  const test::TemporaryFolder folder;
  try {
    writeWholeFile(folder / "none" / "a.txt", "x");
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(means(error.number(), std::errc::no_such_file_or_directory)) << error.number();
  }
}

}  // namespace
}  // namespace korvel
