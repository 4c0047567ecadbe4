#include <gtest/gtest.h>
#include <windows.h>
// Behind it.
#include <aclapi.h>
#include <sddl.h>

#include <filesystem>
#include <string>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel {
namespace {

namespace fs = std::filesystem;

/// The error number of writing `file`, whose message must have the path `named`, as users write it.
int writingFailure(const fs::path& file, const fs::path& named) {
  try {
    writeFileAtomically(file, "two");
    return 0;
  } catch (const Error& error) {
    EXPECT_NE(error.description().find(" " + utf8FromPath(named)), std::string::npos) << error.description();
    return error.number();
  }
}

int writingFailure(const fs::path& file) {
  return writingFailure(file, file);
}

/// The rights of a file, as the system's text form.
std::wstring rightsOf(const fs::path& file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  wchar_t* words = nullptr;
  std::wstring rights;
  if (GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr, nullptr,
                            &descriptor) == ERROR_SUCCESS &&
      ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                           &words, nullptr) != 0)
    rights = words;
  LocalFree(words);
  LocalFree(descriptor);
  return rights;
}

/// The user's identity, as the system's text form.
std::wstring userIdentity() {
  HANDLE opened = nullptr;
  OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened);
  const SystemHandle token(opened);
  DWORD size = 0;
  GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
  std::string user(size, '\0');
  wchar_t* words = nullptr;
  std::wstring identity;
  if (GetTokenInformation(token.get(), TokenUser, user.data(), size, &size) != 0 &&
      ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &words) != 0)
    identity = words;
  LocalFree(words);
  return identity;
}

void giveRights(const fs::path& file, const std::wstring& words) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorW(words.c_str(), SDDL_REVISION_1, &descriptor, nullptr),
            0);
  EXPECT_NE(SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, descriptor), 0) << GetLastError();
  LocalFree(descriptor);
}

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFileOnWindows, ThatAnotherProgramHoldsIsNotReplaced) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / pathFromUtf8("Ölstand heute.txt");
  writeFileAtomically(file, "one");
  {
    const test::LockedFile locked(file);
    ASSERT_TRUE(locked.isLocked());
    EXPECT_EQ(writingFailure(file), ERROR_SHARING_VIOLATION);
    EXPECT_THROW(static_cast<void>(readFile(file)), Error);
  }
  EXPECT_EQ(readFile(file), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFileOnWindows, ThatIsMarkedAsNotToBeWrittenIsNotReplaced) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.txt";
  writeFileAtomically(file, "one");
  ASSERT_NE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(writingFailure(file), ERROR_ACCESS_DENIED);
  EXPECT_EQ(readFile(file), "one");
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFileOnWindows, AnIncompleteFileCannotBeOpenedByOthers) {
  const test::TemporaryFolder folder;
  const AtomicFile file(folder / "a.txt");
  ASSERT_EQ(filesIn(folder.path()), 1U);
  const fs::path unfinished = fs::directory_iterator(folder.path())->path();
  const test::LockedFile other(unfinished, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
  EXPECT_FALSE(other.isLocked());
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
}

TEST(AtomicFileOnWindows, InPlaceOfAFolderIsAFailure) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "a.txt");
  EXPECT_EQ(writingFailure(folder / "a.txt"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFileOnWindows, ThatAProgramHasOpenWithoutSharingItsRemovalIsInUse) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.txt";
  writeFileAtomically(file, "one");
  {
    const test::LockedFile held(file, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(held.isLocked());
    EXPECT_EQ(writingFailure(file), ERROR_SHARING_VIOLATION);
  }
  EXPECT_EQ(readFile(file), "one");
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST(AtomicFileOnWindows, KeepsItsRightsWhereItIsWrittenThroughOnly) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.txt";
  writeFileAtomically(file, "one");
  const std::wstring rightsOfANewFile = rightsOf(file);
  giveRights(file, L"D:P(A;;FA;;;" + userIdentity() + L")");
  const std::wstring ownRights = rightsOf(file);
  if (ownRights == rightsOfANewFile) GTEST_SKIP() << "a new file gets no rights of its own here";
  {
    const AtomicFile unfinished(file);
    for (const auto& entry : fs::directory_iterator(folder.path()))
      EXPECT_EQ(rightsOf(entry.path()), ownRights) << "before the first byte, too";
  }
  writeFileAtomically(file, "two");
  EXPECT_EQ(rightsOf(file), ownRights);
  AtomicFile other(file, SymlinkPolicy::replace);
  other.write("three");
  other.commit();
  EXPECT_EQ(rightsOf(file), rightsOfANewFile) << "what lay there says nothing about the new one";
  EXPECT_EQ(readFile(file), "three");
}

TEST(AtomicFileOnWindows, KeepsItsMarks) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.txt";
  constexpr DWORD marks = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  writeFileAtomically(file, "one");
  ASSERT_NE(SetFileAttributesW(file.c_str(), marks), 0);
  writeFileAtomically(file, "two");
  EXPECT_EQ(GetFileAttributesW(file.c_str()) & marks, marks);
  EXPECT_EQ(readFile(file), "two");
}

TEST(AtomicFileOnWindows, MayBeNamedFromTheCurrentFolder) {
  const test::TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  writeFileAtomically("a.txt", "one");
  writeFileAtomically("a.txt", "two");
  fs::current_path(before);
  EXPECT_EQ(readFile(folder / "a.txt"), "two");
}

TEST(AtomicFileOnWindows, IsNotPutInPlaceOfALinkThatLeadsNowhere) {
  const test::TemporaryFolder folder;
  const fs::path link = folder / "link.txt";
  constexpr DWORD withoutPrivilege = 2;
  CreateSymbolicLinkW(link.c_str(), (folder / "absent.txt").c_str(), withoutPrivilege);
  const DWORD attributes = GetFileAttributesW(link.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    GTEST_SKIP() << "no links to be had here: error " << GetLastError();
  EXPECT_EQ(writingFailure(link), ERROR_FILE_NOT_FOUND);
  EXPECT_NE(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
}

TEST(AtomicFileOnWindows, HoldsBytesAsTheyAre) {
  const test::TemporaryFolder folder;
  const std::string bytes("a\nb\r\nc\x1A\0d", 9);
  writeFileAtomically(folder / "a.txt", bytes);
  EXPECT_EQ(readFile(folder / "a.txt"), bytes);
}

TEST(AtomicFileOnWindows, KeepsOrReplacesALinkAsRequested) {
  const test::TemporaryFolder folder;
  const fs::path real = folder / "real.txt";
  const fs::path link = folder / "link.txt";
  writeFileAtomically(real, "one");
  constexpr DWORD withoutPrivilege = 2;
  CreateSymbolicLinkW(link.c_str(), real.c_str(), withoutPrivilege);
  const DWORD attributes = GetFileAttributesW(link.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    GTEST_SKIP() << "no links to be had here: error " << GetLastError();
  writeFileAtomically(link, "two");
  EXPECT_NE(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
  EXPECT_EQ(readFile(real), "two");
  {
    const test::LockedFile locked(real);
    EXPECT_EQ(writingFailure(link, real), ERROR_SHARING_VIOLATION);
  }
  AtomicFile file(link, SymlinkPolicy::replace);
  file.write("three");
  file.commit();
  EXPECT_EQ(GetFileAttributesW(link.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT, 0U);
  EXPECT_EQ(readFile(real), "two");
}

}  // namespace
}  // namespace korvel
