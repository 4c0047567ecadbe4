#include "base/files.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/wide_text_windows.h"
#include "tests/support/deep_folder.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel {
namespace {

namespace fs = std::filesystem;

TEST(Paths, AreMadeOfUtf8AndGiveItBack) {
  EXPECT_EQ(pathFromUtf8("C:\\Größe €\\😀.db").native(), L"C:\\Gr\u00F6\u00DFe \u20AC\\\U0001F600.db");
  EXPECT_EQ(utf8FromPath(fs::path(L"C:\\Gr\u00F6\u00DFe \u20AC\\\U0001F600.db")), "C:\\Größe €\\😀.db");
}

TEST(Paths, ThatAreNoTextAreShownAllTheSame) {
  EXPECT_EQ(utf8FromPath(fs::path(std::wstring(L"a\xD800z"))), "a\xEF\xBF\xBDz");
  EXPECT_EQ(pathFromUtf8("a\xFFz").native(), L"a\uFFFDz");
}

TEST(Paths, ForCallsAreAsTheyAreUntilTheyAreLong) {
  const std::wstring part(60, L'x');
  EXPECT_EQ(extendedLengthPath(L"C:\\a b\\c.txt").native(), L"C:\\a b\\c.txt");
  EXPECT_EQ(extendedLengthPath(L"NUL").native(), L"NUL");
  std::wstring deep = L"C:";
  for (int i = 0; i < 5; ++i) deep += L"/" + part;
  EXPECT_TRUE(extendedLengthPath(deep).native().starts_with(L"\\\\?\\C:\\" + part + L"\\" + part));
  std::wstring network = L"\\\\server\\share";
  for (int i = 0; i < 5; ++i) network += L"\\" + part;
  EXPECT_TRUE(extendedLengthPath(network).native().starts_with(L"\\\\?\\UNC\\server\\share\\" + part));
  EXPECT_EQ(extendedLengthPath(extendedLengthPath(deep)), extendedLengthPath(deep));
}

TEST(Files, InADeepFolderAreFilesLikeOthers) {
  const test::DeepFolder folder;
  const fs::path file = folder / pathFromUtf8("Bericht für Öl.txt");
  std::error_code failure;
  EXPECT_EQ(files::status(file, failure).type(), fs::file_type::not_found);
  writeFileAtomically(file, "one");
  writeFileAtomically(file, "two!");
  EXPECT_EQ(readFile(file), "two!");
  EXPECT_EQ(files::status(file, failure).type(), fs::file_type::regular);
  EXPECT_EQ(files::status(folder.path(), failure).type(), fs::file_type::directory);
  EXPECT_EQ(files::size(file, failure), 4U);
  EXPECT_FALSE(failure);
  EXPECT_EQ(files::listFolder(folder.path(), failure), std::vector{file});
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(files::open(file, "rb"), std::fclose);
  EXPECT_TRUE(opened);
  EXPECT_TRUE(files::equivalent(file, folder.path() / "." / file.filename()));
}

TEST(Files, AreMadeNewOrNotAtAll) {
  const test::TemporaryFolder folder;
  std::error_code failure;
  files::createNew(folder / "a", failure);
  EXPECT_FALSE(failure);
  files::createNew(folder / "a", failure);
  EXPECT_TRUE(isSystemError(systemErrorNumber(failure), std::errc::file_exists));
  files::rename(folder / "a", folder / "b", failure);
  EXPECT_FALSE(failure);
  files::remove(folder / "a", failure);
  EXPECT_FALSE(failure) << "nothing there is no failure";
  files::remove(folder / "b", failure);
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(Files, AreNoFolders) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a", "x");
  std::error_code failure;
  EXPECT_TRUE(files::listFolder(folder / "a", failure).empty());
  EXPECT_TRUE(isSystemError(systemErrorNumber(failure), std::errc::not_a_directory)) << failure.value();
  EXPECT_TRUE(files::listFolder(folder / "absent", failure).empty());
  EXPECT_TRUE(isSystemError(systemErrorNumber(failure), std::errc::no_such_file_or_directory)) << failure.value();
}

TEST(Files, ThatArePipesAndDevicesAreNoFiles) {
  std::error_code failure;
  EXPECT_FALSE(fs::is_regular_file(files::status(L"NUL", failure)));
  EXPECT_TRUE(fs::exists(files::status(L"NUL", failure)));
  for (const wchar_t* pipe :
       {LR"(\\.\pipe\nobody)", L"//./pipe/nobody", LR"(\\server\pipe\nobody)", LR"(//server/PIPE/nobody)",
        LR"(\\?\pipe\nobody)", LR"(\\?\unc\server\pipe\nobody)", LR"(\\server\mailslot\nobody)"}) {
    EXPECT_EQ(files::status(pipe, failure).type(), fs::file_type::character) << fs::path(pipe);
    EXPECT_FALSE(failure);
  }
}

TEST(Files, ThatAreLookedAtTakeNoPipesPlace) {
  const SystemHandle pipe(
      CreateNamedPipeW(LR"(\\.\pipe\korvel test)", PIPE_ACCESS_INBOUND, PIPE_NOWAIT, 1, 0, 0, 0, nullptr));
  ASSERT_TRUE(pipe.isOpen());
  ConnectNamedPipe(pipe.get(), nullptr);
  std::error_code failure;
  static_cast<void>(files::status(L"//./pipe/korvel test", failure));
  static_cast<void>(files::status(LR"(\\?\pipe\korvel test)", failure));
  EXPECT_EQ(ConnectNamedPipe(pipe.get(), nullptr), 0);
  EXPECT_EQ(GetLastError(), ERROR_PIPE_LISTENING) << "it still waits for the one that it is there for";
}

TEST(Files, WithVerbatimNamesAreFiles) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a", "x");
  std::error_code failure;
  const fs::path verbatim = LR"(\\?\)" + absolutePath(folder / "a", failure).make_preferred().native();
  EXPECT_EQ(files::status(verbatim, failure).type(), fs::file_type::regular) << verbatim;
}

TEST(Files, CanBeReplacedUnlessSomethingHindersIt) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a", "x");
  std::error_code failure;
  files::checkReplaceable(folder / "absent", failure);
  EXPECT_FALSE(failure);
  files::checkReplaceable(folder / "a", failure);
  EXPECT_FALSE(failure);
  files::checkReplaceable(folder.path(), failure);
  EXPECT_EQ(failure.value(), ERROR_ACCESS_DENIED);
  const test::LockedFile held(folder / "a", FILE_SHARE_READ | FILE_SHARE_WRITE);
  files::checkReplaceable(folder / "a", failure);
  EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
}

TEST(Files, TellWhenTheyWereWritten) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a", "x");
  std::error_code failure;
  const auto before = files::lastWriteTime(folder / "a", failure);
  EXPECT_FALSE(failure);
  FILETIME other{};
  other.dwHighDateTime = 30'000'000;
  {
    const SystemHandle file(
        CreateFileW((folder / "a").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_NE(SetFileTime(file.get(), nullptr, nullptr, &other), 0);
  }
  EXPECT_NE(files::lastWriteTime(folder / "a", failure), before);
}

TEST(SystemErrors, CarryTheNumbersOfWindows) {
  EXPECT_EQ(systemErrorNumber(std::errc::no_such_file_or_directory), ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(isSystemError(ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory));
  EXPECT_EQ(systemErrorNumber(std::make_error_code(std::errc::permission_denied)), ERROR_ACCESS_DENIED);
  EXPECT_EQ(systemErrorNumber(std::error_code(ERROR_SHARING_VIOLATION, std::system_category())),
            ERROR_SHARING_VIOLATION);
  errno = ENOSPC;
  EXPECT_EQ(systemErrorNumberFromErrno(std::errc::io_error), ERROR_DISK_FULL);
  errno = 0;
  EXPECT_EQ(systemErrorNumberFromErrno(std::errc::io_error), ERROR_IO_DEVICE);
}

TEST(SystemErrors, HaveTheSystemsTexts) {
  const std::string text = systemMessage(ERROR_ACCESS_DENIED);
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
  EXPECT_NE(text.back(), '.');
  EXPECT_EQ(systemError(ERROR_ACCESS_DENIED, "cannot write").description(), "cannot write: " + text);
  EXPECT_NE(systemMessage(123'456'789).find("123456789"), std::string::npos) << "one that the system does not know";
}

TEST(WideText, IsUtf16) {
  EXPECT_EQ(wideFromUtf8("a€😀"), L"a\u20AC\U0001F600");
  EXPECT_EQ(wideFromUtf8("\xFF"), std::nullopt);
  EXPECT_EQ(utf8FromWide(L"a\u20AC\U0001F600"), "a€😀");
  EXPECT_EQ(utf8FromWide(std::wstring(L"\xDC00\xD800")), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace korvel
