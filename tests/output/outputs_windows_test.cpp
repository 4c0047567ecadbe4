#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "output/export_file.h"
#include "output/report.h"
#include "output/temporary_file.h"
#include "output/text_export.h"
#include "output/workbook.h"
#include "tests/support/deep_folder.h"
#include "tests/support/filled_list.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;

struct OutputsOnWindows : testing::Test {
  int failureOf(const std::function<void()>& write) {
    try {
      write();
      return 0;
    } catch (const Error& error) {
      description = error.description();
      return error.number();
    }
  }

  results::ResultList list = test::filledList({{"A"}, {"B"}}, {{"1", "ä"}});
  std::string description;
};

TEST_F(OutputsOnWindows, GoIntoTheFolderOfWindows) {
  const test::TemporaryFolder folder;
  const fs::path windows = folder / pathFromUtf8("Wind öws");
  fs::create_directory(windows);
  const test::EnvironmentVariable windir("windir", utf8FromPath(windows));
  const fs::path file = exportPath(textExportName);
  EXPECT_EQ(utf8FromPath(file), utf8FromPath(windows) + "\\velview.txt");
  writeTextExport(list, file);
  EXPECT_EQ(readFile(file), "A,B,\r\n1,\xE4\r\n");
}

TEST_F(OutputsOnWindows, GoToTheRootOfADiskThatStandsAlone) {
  const test::EnvironmentVariable windir("windir", "D:");
  EXPECT_EQ(utf8FromPath(exportPath(textExportName)), "D:\\velview.txt");
}

TEST_F(OutputsOnWindows, WithoutItGoAmongTheUsersData) {
  const test::TemporaryFolder folder;
  const test::EnvironmentVariable windir("windir");
  const test::EnvironmentVariable profile("LOCALAPPDATA", utf8FromPath(folder.path()));
  EXPECT_EQ(exportPath(textExportName), folder.path() / "korvel" / "export" / "velview.txt");
  EXPECT_TRUE(fs::is_directory(folder / "korvel" / "export"));
}

TEST_F(OutputsOnWindows, OverAFileThatAnotherProgramHoldsAreDenied) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / textExportName;
  writeFileAtomically(file, "earlier");
  {
    const test::LockedFile locked(file);
    ASSERT_TRUE(locked.isLocked());
    for (const auto& write : {std::function<void()>([&] { writeTextExport(list, file); }),
                              std::function<void()>([&] { writeExchangeFile(list, file); }), std::function<void()>([&] {
                                writeListReport({"x", &list}, {}, file);
                              }),
                              std::function<void()>([&] { writeWorkbook(list, "x", file); })}) {
      EXPECT_EQ(failureOf(write), numberOf(FileError::permissionDenied));
      EXPECT_EQ(description, "Permission denied");
    }
  }
  EXPECT_EQ(readFile(file), "earlier");
}

TEST_F(OutputsOnWindows, OverAFileThatIsNotToBeWrittenAreDenied) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / textExportName;
  writeFileAtomically(file, "earlier");
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(failureOf([&] { writeTextExport(list, file); }), numberOf(FileError::permissionDenied));
  SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(OutputsOnWindows, MayStandInADeepFolder) {
  const test::DeepFolder folder;
  writeTextExport(list, folder / textExportName);
  EXPECT_EQ(readFile(folder / textExportName), "A,B,\r\n1,\xE4\r\n");
  writeWorkbook(list, "x", folder / "x.xlsx");
  EXPECT_EQ(readFile(folder / "x.xlsx").substr(0, 2), "PK");
}

TEST_F(OutputsOnWindows, WorkbooksAreMadeInAFolderOfAnyName) {
  const test::TemporaryFolder folder;
  const fs::path odd = folder / pathFromUtf8("Größe ポ");
  fs::create_directory(odd);
  {
    Workbook book("x", odd);
    const std::vector<db::Field> fields{{"A"}};
    book.beginResult(fields);
    const db::Cell cell{"a"};
    book.row({&cell, 1});
    book.endResult();
    std::string bytes;
    book.finish([&](std::string_view chunk) { bytes += chunk; });
    EXPECT_EQ(bytes.substr(0, 2), "PK");
  }
  EXPECT_TRUE(fs::is_empty(odd));
}

TEST_F(OutputsOnWindows, ATemporaryFileGoesWithItsObject) {
  const test::TemporaryFolder folder;
  {
    const TemporaryFile scratch(folder.path());
    scratch.checkRoom(1'000'000);
    EXPECT_EQ(fs::file_size(scratch.path()), 0U);
    EXPECT_NE(failureOf([&] { scratch.checkRoom(std::uint64_t{1} << 62U); }), 0) << "no disk has so much room";
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

}  // namespace
}  // namespace korvel::output
