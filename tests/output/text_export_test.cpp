#include "output/text_export.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/output/text_export_fixture.h"
#include "tests/support/filled_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using test::filledList;

TEST_F(TextExportFile, HoldsTwoLinesForOneRow) {
  EXPECT_EQ(text(abc), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(replaced, 0U);
  writeExchangeFile(abc, folder / exchangeFileName);
  EXPECT_EQ(readFile(folder / "velviewex.log"), "A|B|C|\r\na|b|c\r\n");
}

TEST_F(TextExportFile, IsReplacedByTheNextOne) {
  writeFileAtomically(file, std::string(10000, 'x'));
  EXPECT_EQ(text(abc), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(TextExportFile, QuotesNothing) {
  const auto list = filledList({{"A"}, {"B"}}, {{"1,5", "x|y"}, {"\"q\"", "two\r\nlines"}, {"<td>", "=1+1\t\x01"}});
  EXPECT_EQ(text(list), "A,B,\r\n1,5,x|y\r\n\"q\",two\r\nlines\r\n<td>,=1+1\t\x01\r\n");
  writeExchangeFile(list, file);
  EXPECT_EQ(readFile(file), "A|B|\r\n1,5|x|y\r\n\"q\"|two\r\nlines\r\n<td>|=1+1\t\x01\r\n");
}

TEST_F(TextExportFile, IsInTheCodePageWithoutAMark) {
  const auto list = filledList({{"Größe €"}, {"ポ"}}, {{"é", "\xF0\x9F\x98\x80"}, {"א", "a\xFF\xE2\x82"}});
  EXPECT_EQ(text(list),
            "Gr\xF6\xDF"
            "e \x80,?,\r\n\xE9,?\r\n?,a???\r\n");
  EXPECT_EQ(replaced, 6U);
}

TEST_F(TextExportFile, TakesValuesOfAnyLength) {
  const std::string longText(std::size_t{1} << 20U, 'z');
  const auto list = filledList({{"A"}, {"B"}}, {{longText, "b"}, {"a", longText}});
  EXPECT_EQ(text(list), "A,B,\r\n" + longText + ",b\r\na," + longText + "\r\n");
}

TEST_F(TextExportFile, OfAStandardListIsAsDisplayed) {
  const auto list =
      filledList({{"A"}, {"B"}, {"C"}, {"D"}}, {{" a ", std::nullopt, "c", "d"}}, results::RowFilling::standard);
  EXPECT_EQ(text(list), "A,B,C,D,\r\na,,,\r\n");
}

TEST_F(TextExportFile, ReportsItsProgress) {
  const auto list = filledList({{"A"}}, std::vector<test::ScriptedRow>(2500, test::ScriptedRow{"x"}));
  std::vector<std::size_t> told;
  writeTextExport(list, file, [&](std::size_t rows) { told.push_back(rows); });
  EXPECT_EQ(told, (std::vector<std::size_t>{1000, 2000, 2500}));
}

TEST_F(TextExportFile, GivenUpOnTheWayLeavesTheEarlierOne) {
  writeFileAtomically(file, "earlier");
  EXPECT_THROW(writeTextExport(abc, file, [](std::size_t) { throw std::runtime_error("stop"); }), std::runtime_error);
  EXPECT_EQ(readFile(file), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(TextExportFile, FailuresCarryTheNumbersOfWindows) {
  EXPECT_EQ(failureOf(abc, folder / "absent" / textExportName), numberOf(FileError::pathNotFound));
  EXPECT_EQ(description, "Path not found");
  fs::create_directory(file);
  EXPECT_EQ(failureOf(abc, file), numberOf(FileError::pathFileAccess));
  EXPECT_EQ(description, "Path/File access error");
  writeFileAtomically(folder / "plain", "x");
  EXPECT_EQ(failureOf(abc, folder / "plain" / textExportName), numberOf(FileError::pathNotFound));
}

}  // namespace
}  // namespace korvel::output
