#include "output/report_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "output/report.h"
#include "settings/code_page.h"
#include "tests/support/filled_list.h"
#include "tests/support/hostile_texts.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

using test::filledList;

class TextBytes : public ReportBytes {
 public:
  explicit TextBytes(std::string text) : text_(std::move(text)) {}
  void rewind() override { at_ = 0; }
  std::size_t read(std::span<char> to) override {
    // Short reads, so that every mark is split at some point.
    const std::size_t size = std::min({to.size(), text_.size() - at_, std::size_t{7}});
    std::copy_n(text_.data() + at_, size, to.data());
    at_ += size;
    return size;
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

using Rows = std::vector<std::vector<std::string>>;
struct ReadSection {
  SectionHead head;
  Rows rows;
};

std::vector<ReadSection> readAll(ReportSource& source) {
  std::vector<ReadSection> sections;
  SectionHead head;
  std::vector<std::string_view> cells;
  while (source.nextSection(head)) {
    sections.push_back({head, {}});
    while (source.nextRow(cells)) sections.back().rows.emplace_back(cells.begin(), cells.end());
  }
  return sections;
}

struct Written {
  std::string bytes;
  ReportNotes notes;
};

Written writtenReport(const std::vector<ReportList>& lists, const PrintFont& font = {},
                      ReportTemplate form = ReportTemplate::singleList) {
  Written report;
  report.notes = writeReport(form, lists, font, [&](std::string_view chunk) { report.bytes += chunk; });
  return report;
}

std::vector<ReadSection> readBack(const Written& report) {
  ReportReader reader(std::make_unique<TextBytes>(report.bytes), report.notes);
  return readAll(reader);
}

bool isRefused(const std::string& bytes, const ReportNotes& notes) {
  try {
    ReportReader reader(std::make_unique<TextBytes>(bytes), notes);
    readAll(reader);
    return false;
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), numberOf(FileError::invalidFileFormat));
    return true;
  }
}

/// Every hostile text beside every other one.
results::ResultList hostileList() {
  std::vector<test::ScriptedRow> rows;
  for (const std::string& first : test::hostileTexts())
    for (const std::string& second : test::hostileTexts()) rows.push_back({first, second, "last"});
  return filledList({{"A"}, {"B"}, {"C"}}, rows);
}

TEST(ReportReader, GivesBackWhatWasWritten) {
  const auto list = filledList({{"A"}, {"B"}}, {{"1", "x"}, {"2", "größer €"}});
  const auto sections = readBack(writtenReport({{"ALL Audits", &list}}, {"Courier New", 9.75}));
  ASSERT_EQ(sections.size(), 1U);
  EXPECT_EQ(sections[0].head.caption, "ALL Audits");
  EXPECT_EQ(sections[0].head.font.name, "Courier New");
  EXPECT_EQ(sections[0].head.font.size, 9.75);
  EXPECT_EQ(sections[0].head.headers, (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(sections[0].rows, (Rows{{"1", "x"}, {"2", "größer €"}}));
}

TEST(ReportReader, TakesMarkupInCellsForText) {
  const auto list = hostileList();
  const auto sections = readBack(writtenReport({{"x", &list}}));
  ASSERT_EQ(sections.size(), 1U);
  ASSERT_EQ(sections[0].rows.size(), list.rowCount());
  for (std::size_t row = 0; row < list.rowCount(); ++row)
    for (std::size_t column = 0; column < 3; ++column)
      ASSERT_EQ(sections[0].rows[row][column], list.text({row}, {column})) << row << ' ' << column;
}

TEST(ReportReader, TakesMarkupInCaptionsFontsAndHeadersForText) {
  for (const std::string text : {"a Audits</p>\r\n<p align=\"center\">b", "x\">\r\n<tr>\r\n\r\n", "</th>\r\n<th>"}) {
    const auto list = filledList({{text}, {"B"}}, {{"1", "2"}});
    const auto sections = readBack(writtenReport({{text, &list}, {"second", &list}}, {text, 8}));
    ASSERT_EQ(sections.size(), 2U);
    EXPECT_EQ(sections[0].head.caption, text);
    EXPECT_EQ(sections[0].head.font.name, text);
    EXPECT_EQ(sections[1].head.headers, (std::vector<std::string>{text, "B"}));
    EXPECT_EQ(sections[1].rows, (Rows{{"1", "2"}}));
  }
}

TEST(ReportReader, ReadsTheSecondTemplateAndReportsWithoutRowsOrLists) {
  const auto empty = filledList({{"A"}}, {});
  const auto one = filledList({{"B"}}, {{"b"}});
  const auto sections = readBack(writtenReport({{"x", &empty}, {"y", &one}}, {}, ReportTemplate::allLists));
  ASSERT_EQ(sections.size(), 2U);
  EXPECT_TRUE(sections[0].rows.empty());
  EXPECT_EQ(sections[1].rows, (Rows{{"b"}}));
  EXPECT_TRUE(readBack(writtenReport({}, {}, ReportTemplate::allLists)).empty());
}

TEST(ReportReader, CanBeginAnewAndPassRowsOver) {
  const auto list = hostileList();
  const auto report = writtenReport({{"x", &list}, {"y", &list}});
  ReportReader reader(std::make_unique<TextBytes>(report.bytes), report.notes);
  SectionHead head;
  std::vector<std::string_view> cells;
  ASSERT_TRUE(reader.nextSection(head));
  ASSERT_TRUE(reader.nextRow(cells));
  ASSERT_TRUE(reader.nextSection(head));
  EXPECT_EQ(head.caption, "y");
  reader.rewind();
  EXPECT_EQ(readAll(reader).size(), 2U);
}

TEST(ReportReader, ReadsValuesOfAnyLength) {
  const std::string longText = std::string(std::size_t{1} << 20U, 'z') + "</td>\r\n";
  const auto list = filledList({{"A"}, {"B"}}, {{longText, "b"}, {"a", longText}});
  const test::TemporaryFolder folder;
  const ReportNotes notes = writeListReport({"x", &list}, {}, folder / reportName);
  ReportReader reader(reportFile(folder / reportName), notes);
  EXPECT_EQ(readAll(reader).at(0).rows, (Rows{{longText, "b"}, {"a", longText}}));
}

TEST(ReportReader, RefusesAFileThatWasChanged) {
  const auto list = filledList({{"A"}, {"B"}}, {{"1", "old"}, {"</td>\r\n", "3"}});
  const auto report = writtenReport({{"x", &list}});
  ASSERT_FALSE(isRefused(report.bytes, report.notes));
  for (std::size_t i = 0; i < report.bytes.size(); ++i) {
    std::string changed = report.bytes;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_TRUE(isRefused(changed, report.notes)) << "byte " << i;
    EXPECT_TRUE(isRefused(report.bytes.substr(0, i), report.notes)) << "cut at " << i;
  }
  EXPECT_TRUE(isRefused(report.bytes + "x", report.notes));
  EXPECT_TRUE(isRefused(report.bytes + std::string(1U << 20U, 'x'), report.notes));
}

TEST(ReportReader, RefusesTheNotesOfAnotherReport) {
  const auto one = filledList({{"A"}}, {{"1"}});
  const auto two = filledList({{"A"}}, {{"1"}, {"2"}});
  EXPECT_TRUE(isRefused(writtenReport({{"x", &one}}).bytes, writtenReport({{"x", &two}}).notes));
  EXPECT_TRUE(isRefused(writtenReport({{"x", &two}}).bytes, writtenReport({{"x", &one}}).notes));
}

TEST(ReportReader, MissingFileIsReportedByNumber) {
  const test::TemporaryFolder folder;
  try {
    static_cast<void>(reportFile(folder / "absent"));
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), numberOf(FileError::fileNotFound));
  }
}

}  // namespace
}  // namespace korvel::output
