#include "output/report.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/support/filled_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

using test::filledList;

constexpr std::array<std::string_view, 6> captions = {"ALL Audits",       "Configuration", "Runtime",
                                                      "Document Control", "KorvelAudit",   "Custom"};

std::string kept(const std::string& name) {
  return readFile(KORVEL_SOURCE_DIR "/tests/data/output/" + name);
}

std::string single(const results::ResultList& list, std::string_view caption, const PrintFont& font = {}) {
  std::string bytes;
  const ReportList reported{caption, &list};
  writeReport(ReportTemplate::singleList, {&reported, 1}, font, [&](std::string_view chunk) { bytes += chunk; });
  return bytes;
}

TEST(Report, OfOneListIsTheKeptFile) {
  const auto list =
      filledList({{"Entry ID"}, {"Größe"}}, {{"1", "<b>&amp;</b>"}, {"2", "a\r\nb"}, {"3", "ポ \xE2\x82\xAC"}});
  EXPECT_EQ(single(list, captions[0], {"Courier", 9.75}), kept("report_single.htm"));
}

TEST(Report, OfAnEmptyListIsAPageWithACaptionAndAHeader) {
  EXPECT_EQ(single(filledList({{"A"}, {"B"}}, {}), captions[3]), kept("report_empty.htm"));
}

TEST(Report, OfAllListsHasProjectLinesAndNoEmptyLists) {
  const test::TemporaryFolder folder;
  std::vector<results::ResultList> lists;
  for (int i = 0; i < 6; ++i) lists.push_back(filledList({{"A"}}, {}));
  lists[0] = filledList({{"A"}}, {{"never reported"}});
  lists[1] = filledList({{"A"}, {"B"}}, {{"1", "2"}});
  lists[4] = filledList({{"C"}}, {{"3"}, {"4"}});
  lists[5] = filledList({{"A"}}, {{"never reported"}});
  writeAllListsReport(lists, captions, {}, folder / reportName);
  EXPECT_EQ(readFile(folder / "report.htm"), kept("report_all.htm"));
}

TEST(Report, NamesTheFontOfItsHeader) {
  const auto list = filledList({{"A"}}, {});
  EXPECT_NE(single(list, "x", {"Courier", 9}).find("<THEAD STYLE=\"FONT:9P Courier\">\r\n"), std::string::npos);
  EXPECT_NE(single(list, "x", {"Courier", 9.75}).find("FONT:9.75P Courier\""), std::string::npos);
}

TEST(Report, FontSizesHaveUpToFourDigitsAndAPoint) {
  EXPECT_EQ(fontSizeText(9), "9");
  EXPECT_EQ(fontSizeText(10), "10");
  EXPECT_EQ(fontSizeText(100), "100");
  EXPECT_EQ(fontSizeText(9.75), "9.75");
  EXPECT_EQ(fontSizeText(8.2512), "8.2512");
  EXPECT_EQ(fontSizeText(8.25004), "8.25");
  EXPECT_EQ(fontSizeText(0.5), "0.5");
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr) {
    EXPECT_EQ(fontSizeText(9.75), "9.75");
  }
  std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(Report, IsReplacedByTheNextOne) {
  const test::TemporaryFolder folder;
  const auto first = filledList({{"A"}}, {{"first"}, {"and more"}});
  const auto second = filledList({{"A"}}, {{"second"}});
  writeListReport({"x", &first}, {}, folder / reportName);
  writeListReport({"x", &second}, {}, folder / reportName);
  EXPECT_EQ(readFile(folder / "report.htm"), single(second, "x"));
}

TEST(Report, ReportsWhatTheCodePageLacks) {
  const test::TemporaryFolder folder;
  const auto list = filledList({{"A"}}, {{"ポンプ"}, {"é"}});
  EXPECT_EQ(writeListReport({"x", &list}, {}, folder / reportName), 3U);
}

TEST(Report, ThatCannotBeWrittenSaysSoByNumber) {
  const test::TemporaryFolder folder;
  const auto list = filledList({{"A"}}, {});
  try {
    writeListReport({"x", &list}, {}, folder / "absent" / reportName);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), numberOf(FileError::pathNotFound));
  }
}

}  // namespace
}  // namespace korvel::output
