#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "base/error.h"
#include "base/paths.h"
#include "base/whole_file.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel {
namespace {

namespace fs = std::filesystem;

int writingFailure(const fs::path& file) {
  try {
    writeWholeFile(file, "two");
    return 0;
  } catch (const Error& error) {
    EXPECT_NE(error.description().find(utf8FromPath(file)), std::string::npos) << error.description();
    return error.number();
  }
}

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(WholeFileOnWindows, ThatAnotherProgramHoldsIsNotReplaced) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / pathFromUtf8("Ölstand heute.txt");
  writeWholeFile(file, "one");
  {
    const test::LockedFile locked(file);
    ASSERT_TRUE(locked.isLocked());
    EXPECT_EQ(writingFailure(file), ERROR_SHARING_VIOLATION);
    EXPECT_THROW(static_cast<void>(readWholeFile(file)), Error);
  }
  EXPECT_EQ(readWholeFile(file), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFileOnWindows, ThatIsMarkedAsNotToBeWrittenIsNotReplaced) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.txt";
  writeWholeFile(file, "one");
  ASSERT_NE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(writingFailure(file), ERROR_ACCESS_DENIED);
  EXPECT_EQ(readWholeFile(file), "one");
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFileOnWindows, WhatIsNotYetWholeIsNobodyElsesToOpen) {
  const test::TemporaryFolder folder;
  const WholeFile file(folder / "a.txt");
  ASSERT_EQ(filesIn(folder.path()), 1U);
  const fs::path unfinished = fs::directory_iterator(folder.path())->path();
  const test::LockedFile other(unfinished, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  EXPECT_FALSE(other.isLocked());
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
}

TEST(WholeFileOnWindows, InPlaceOfAFolderIsAFailure) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "a.txt");
  EXPECT_EQ(writingFailure(folder / "a.txt"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(WholeFileOnWindows, HoldsBytesAsTheyAre) {
  const test::TemporaryFolder folder;
  const std::string bytes("a\nb\r\nc\x1A\0d", 9);
  writeWholeFile(folder / "a.txt", bytes);
  EXPECT_EQ(readWholeFile(folder / "a.txt"), bytes);
}

TEST(WholeFileOnWindows, KeepsALinkOrReplacesItAsItIsTold) {
  const test::TemporaryFolder folder;
  const fs::path real = folder / "real.txt";
  const fs::path link = folder / "link.txt";
  writeWholeFile(real, "one");
  constexpr DWORD withoutPrivilege = 2;
  CreateSymbolicLinkW(link.c_str(), real.c_str(), withoutPrivilege);
  const DWORD attributes = GetFileAttributesW(link.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    GTEST_SKIP() << "no links to be had here: error " << GetLastError();
  writeWholeFile(link, "two");
  EXPECT_NE(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
  EXPECT_EQ(readWholeFile(real), "two");
  WholeFile file(link, AtLink::replace);
  file.write("three");
  file.commit();
  EXPECT_EQ(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
  EXPECT_EQ(readWholeFile(real), "two");
}

}  // namespace
}  // namespace korvel
