#include "output/workbook.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/support/filled_list.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zip_part.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using test::filledList;

struct WorkbookOnAFullDisk : testing::Test {
  std::string part(const std::string& name) { return test::partOfZip(readFile(file), name); }
  std::string sheet(int number = 1) { return part("xl/worksheets/sheet" + std::to_string(number) + ".xml"); }
  WorkbookSummary write(const results::ResultList& list) { return writeWorkbook(list, "ALL Audits", file); }
  test::TemporaryFolder folder;
  fs::path file = folder / "book.xlsx";
};

TEST_F(WorkbookOnAFullDisk, LeavesTheEarlierOne) {
  writeFileAtomically(file, "earlier");
  std::vector<test::ScriptedRow> rows;
  for (int i = 0; i < 5000; ++i) rows.push_back({std::to_string(i * 7919)});
  const auto list = filledList({{"A"}}, rows);
  int number = 0;
  try {
    const test::FullDisk disk(4096);
    write(list);
  } catch (const Error& error) {
    number = error.number();
  }
  EXPECT_EQ(number, numberOf(FileError::diskFull));
  EXPECT_EQ(readFile(file), "earlier");
}

TEST_F(WorkbookOnAFullDisk, WhoseRowsFillTheDiskIsNotTakenForWhole) {
  // So similar that the workbook is much smaller than its temporary files.
  const auto list = filledList({{"A"}}, std::vector<test::ScriptedRow>(3000, {"the same text in every row"}));
  write(list);
  const std::size_t whole = sheet().size();
  ASSERT_GT(whole, 3 * readFile(file).size());
  // Each part may be the one that does not fit: the rows, their sheet, and the parts around it.
  std::vector<std::size_t> sizes = {whole / 2, whole - 5000};
  for (std::size_t missing = 2000; missing > 0; missing -= 100) sizes.push_back(whole - missing);
  for (const std::size_t size : sizes) {
    int number = 0;
    try {
      const test::FullDisk disk(size);
      write(list);
    } catch (const Error& error) {
      number = error.number();
    }
    EXPECT_EQ(number, numberOf(FileError::diskFull)) << whole - size << " bytes too few";
  }
}

std::size_t openFiles() {
  const fs::directory_iterator files("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(fs::begin(files), fs::end(files)));
}

TEST(WorkbookThatIsGivenUp, LeavesNoFileOpen) {
  const std::size_t before = openFiles();
  {
    Workbook book("Rows", fs::temp_directory_path(), 3);
    book.beginResult(std::vector<db::Field>{{"A"}});
    for (int i = 0; i < 5; ++i) {
      const db::Cell cell{"text"};
      book.row({&cell, 1});
    }
    EXPECT_GT(openFiles(), before) << "each sheet keeps its rows in a file";
  }
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace korvel::output
