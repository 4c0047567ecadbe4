#include "output/workbook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/support/filled_list.h"
#include "tests/support/hostile_texts.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zip_part.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using db::ColumnKind;
using test::filledList;
using testing::HasSubstr;
using testing::Not;

struct WorkbookFile : testing::Test {
  std::string part(const std::string& name) { return test::partOfZip(readFile(file), name); }
  std::string sheet(int number = 1) { return part("xl/worksheets/sheet" + std::to_string(number) + ".xml"); }
  WorkbookSummary write(const results::ResultList& list) { return writeWorkbook(list, "ALL Audits", file); }
  /// A workbook that is written row by row.
  std::string finished(Workbook& book) {
    std::string bytes;
    summary = book.finish([&](std::string_view chunk) { bytes += chunk; });
    writeFileAtomically(file, bytes);
    return bytes;
  }
  /// The text of a cell, as an XML reader decodes it.
  static std::string plain(std::string text) {
    for (const auto& [coded, meant] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}})
      text = replaceAll(std::move(text), coded, meant);
    return text;
  }
  static std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
      text.replace(at, from.size(), to);
    return text;
  }

  test::TemporaryFolder folder;
  fs::path file = folder / "book.xlsx";
  WorkbookSummary summary;
};

TEST_F(WorkbookFile, CarriesARemarkInItsProperties) {
  const auto list = filledList({{"N"}}, {{"1"}});
  std::string bytes;
  const ByteSink sink = [&](std::string_view chunk) { bytes += chunk; };
  writeWorkbook(list, "ALL Audits", sink, {}, "12 of 30 chosen: Name = \"a<b\"\x01");
  EXPECT_THAT(plain(test::partOfZip(bytes, "docProps/core.xml")),
              HasSubstr("<dc:description>12 of 30 chosen: Name = \"a<b\"\\x01</dc:description>"));
  bytes.clear();
  writeWorkbook(list, "ALL Audits", sink);
  EXPECT_THAT(test::partOfZip(bytes, "docProps/core.xml"), Not(HasSubstr("description")));
}

TEST_F(WorkbookFile, KeepsTypesWhereNothingIsLost) {
  const auto list = filledList({{"N", ColumnKind::number},
                                {"D", ColumnKind::dateTime},
                                {"B", ColumnKind::boolean},
                                {"T", ColumnKind::text},
                                {"X", ColumnKind::binary}},
                               {{"42", "2004-03-07 12:00:00.000", "1", "42", "0aff"},
                                {"007", "2004-03-07 12:00:00.1234567", "2", "2004-03-07", std::nullopt}});
  write(list);
  const std::string xml = sheet();
  EXPECT_THAT(xml, HasSubstr("<c r=\"A2\"><v>42</v></c>"));
  EXPECT_TRUE(std::regex_search(xml, std::regex("<c r=\"B2\" s=\"[0-9]+\"><v>38053\\.5</v></c>")));
  EXPECT_THAT(xml, HasSubstr("<c r=\"C2\" t=\"b\"><v>1</v></c>"));
  EXPECT_THAT(xml, HasSubstr("<c r=\"D2\" t=\"inlineStr\"><is><t>42</t></is></c>"));
  EXPECT_THAT(xml, HasSubstr("<t>0aff</t>"));
  EXPECT_THAT(xml, HasSubstr("<c r=\"A3\" t=\"inlineStr\"><is><t>007</t></is></c>"));
  EXPECT_THAT(xml, HasSubstr("<t>2004-03-07 12:00:00.1234567</t>"));
  EXPECT_THAT(xml, HasSubstr("<c r=\"C3\" t=\"inlineStr\"><is><t>2</t></is></c>"));
  EXPECT_THAT(xml, Not(HasSubstr("r=\"E3\"")));
  EXPECT_THAT(part("xl/styles.xml"), HasSubstr("yyyy-mm-dd hh:mm:ss.000"));
}

TEST_F(WorkbookFile, HasAHeaderThatStaysAndFilters) {
  write(filledList({{"First"}, {"Second"}}, {{"a", "b"}, {"c", "d"}}));
  const std::string xml = sheet();
  EXPECT_THAT(xml, HasSubstr("<t>First</t>"));
  EXPECT_THAT(xml, HasSubstr("ySplit=\"1\""));
  EXPECT_THAT(xml, HasSubstr("state=\"frozen\""));
  EXPECT_THAT(xml, HasSubstr("<autoFilter ref=\"A1:B3\"/>"));
  EXPECT_THAT(part("xl/workbook.xml"), HasSubstr("name=\"ALL Audits\""));
}

TEST_F(WorkbookFile, NeverMakesAFormulaOfAText) {
  write(filledList({{"A"}}, {{"=1+1"}, {"=cmd|' /C calc'!A0"}, {"{=1}"}, {"http://example.invalid/"}}));
  const std::string xml = sheet();
  EXPECT_THAT(xml, Not(HasSubstr("<f>")));
  EXPECT_THAT(xml, Not(HasSubstr("<hyperlink")));
  EXPECT_THAT(xml, HasSubstr("<t>=1+1</t>"));
}

TEST_F(WorkbookFile, CarriesHostileTextsAsText) {
  std::vector<test::ScriptedRow> rows;
  for (const std::string& text : test::hostileTexts()) rows.push_back({text});
  const auto done = write(filledList({{"A"}}, rows));
  EXPECT_EQ(done.lossCount, 1U) << "only the zero character has no form there";
  const std::string xml = plain(sheet());
  EXPECT_THAT(xml, HasSubstr("<t><script>alert(1)</script></t>"));
  EXPECT_THAT(xml, HasSubstr("_x001B_[2J"));
  EXPECT_THAT(xml, HasSubstr("_x000D_")) << "a bare carriage return would be read as a line feed";
  EXPECT_THAT(xml, HasSubstr("a\xEF\xBF\xBD"
                             "b"));
  EXPECT_THAT(xml, HasSubstr("größer € é"));
}

/// A text with its codes decoded as readers do, from left to right.
std::string decoded(const std::string& text) {
  static const std::regex code("_x([0-9A-Fa-f]{4})_");
  std::string plain;
  std::string rest = text;
  for (std::smatch found; std::regex_search(rest, found, code); rest = found.suffix())
    plain += found.prefix().str() + static_cast<char>(std::stoi(found.str(1), nullptr, 16));
  return plain + rest;
}

TEST_F(WorkbookFile, KeepsTextsThatLookLikeCodes) {
  const std::vector<std::string> texts = {"_x000D_",  "_x0041_",       "a_x0041_b_x0042_", "_x0041_x0042_",
                                          "__x0041_", "_x0041\x1B[2J", "_x005F_x",         "_x004_",
                                          "_x0041",   "_xyz1_",        "_x00e4_",          "_X0041_"};
  for (const std::string& text : texts) {
    EXPECT_EQ(write(filledList({{text}}, {{text}})).lossCount, 0U) << text;
    const std::string xml = sheet();
    static const std::regex cell("<t>([^<]*)</t>");
    int cells = 0;
    for (std::sregex_iterator found(xml.begin(), xml.end(), cell), end; found != end; ++found, ++cells)
      EXPECT_EQ(decoded((*found)[1]), text) << (*found)[1];
    EXPECT_EQ(cells, 2) << "the header's and the row's";
  }
  write(filledList({{"A"}}, {{"_x000D_"}}));
  EXPECT_THAT(sheet(), HasSubstr("<t>_x005F_x000D_</t>"));
  write(filledList({{"A"}}, {{"_x0041"}, {"_xyz1_"}, {"snake_x1_case"}}));
  EXPECT_THAT(sheet(), Not(HasSubstr("_x005F_"))) << "only where it is needed";
}

TEST_F(WorkbookFile, CutsACodeThatNoLongerFits) {
  const auto done = write(filledList({{"A"}}, {{std::string(32760, 'x') + "_x0041_"}}));
  ASSERT_EQ(done.lossCount, 1U);
  EXPECT_EQ(done.losses.at(0).kind, WorkbookLoss::Kind::tooLong);
}

TEST_F(WorkbookFile, DatesHaveTheRoomThatTheyNeed) {
  write(filledList({{"T"}, {"D", ColumnKind::dateTime}, {"N", ColumnKind::number}},
                   {{"a", "2004-03-07 12:00:00.000", "1"}}));
  const std::string xml = sheet();
  const auto widthOf = [&xml](int column) {
    const std::string number = std::to_string(column);
    std::smatch found;
    const std::regex col("<col min=\"" + number + "\" max=\"" + number + "\" width=\"([0-9.]+)\"");
    return std::regex_search(xml, found, col) ? std::stod(found[1]) : 0.0;
  };
  const auto characters = static_cast<double>(std::string_view("2004-03-07 12:00:00.000").size());
  EXPECT_GE(widthOf(2), characters) << "a narrower one would show ####";
  EXPECT_LT(widthOf(1), characters);
  EXPECT_GT(widthOf(1), 0);
  EXPECT_EQ(widthOf(1), widthOf(3));
}

TEST_F(WorkbookFile, ReportsWhatACellCannotHold) {
  std::string smileys;
  for (int i = 0; i < 20000; ++i) smileys += "\xF0\x9F\x98\x80";
  const auto done = write(filledList(
      {{"A"}, {"B"}}, {{std::string(32767, 'x'), "fine"}, {std::string(1U << 20U, 'y'), "a\xFF"}, {smileys, "ok"}}));
  ASSERT_EQ(done.lossCount, 3U);
  EXPECT_EQ(done.losses.at(0).row, 1U);
  EXPECT_EQ(done.losses.at(0).kind, WorkbookLoss::Kind::tooLong);
  EXPECT_EQ(done.losses.at(1).column, 1U);
  EXPECT_EQ(done.losses.at(1).kind, WorkbookLoss::Kind::notText);
  const std::string xml = sheet();
  EXPECT_THAT(xml, HasSubstr("<t>" + std::string(32767, 'x') + "</t>"));
  EXPECT_THAT(xml, HasSubstr("<t>" + std::string(32767, 'y') + "</t>"));
  EXPECT_THAT(xml, HasSubstr("<t>a\xEF\xBF\xBD</t>"));
  EXPECT_THAT(xml, HasSubstr("<t>" + smileys.substr(0, 4 * 16383) + "</t>")) << "not in the middle of a character";
}

TEST_F(WorkbookFile, GoesOnOnAnotherSheetWhenOneIsFull) {
  Workbook book("Rows", fs::temp_directory_path(), 3);
  const std::vector<db::Field> fields{{"A"}};
  book.beginResult(fields);
  for (const char* text : {"r0", "r1", "r2", "r3", "r4"}) {
    const db::Cell cell{text};
    book.row({&cell, 1});
  }
  book.endResult();
  finished(book);
  EXPECT_EQ(summary.sheets, 3U);
  EXPECT_EQ(summary.rows, 5U);
  EXPECT_THAT(sheet(1), HasSubstr("<t>r1</t>"));
  EXPECT_THAT(sheet(2), HasSubstr("<c r=\"A1\" s="));
  EXPECT_THAT(sheet(2), HasSubstr("<c r=\"A2\" t=\"inlineStr\"><is><t>r2</t>"));
  EXPECT_THAT(sheet(3), HasSubstr("<autoFilter ref=\"A1:A2\"/>"));
  EXPECT_THAT(part("xl/workbook.xml"), HasSubstr("name=\"Rows (3)\""));
}

TEST_F(WorkbookFile, GivesEveryResultSetASheet) {
  Workbook book("Custom [query]: a name that is longer than a sheet's may be");
  for (const char* name : {"A", "B"}) {
    const std::vector<db::Field> fields{{name}};
    book.beginResult(fields);
    book.endResult();
  }
  finished(book);
  EXPECT_EQ(summary.sheets, 2U);
  EXPECT_THAT(sheet(2), HasSubstr("<t>B</t>"));
  EXPECT_THAT(part("xl/workbook.xml"), HasSubstr("name=\"Custom _query__ a name that is \""));
}

TEST_F(WorkbookFile, ThatWasNeverFinishedLeavesNothing) {
  {
    Workbook book("x", folder.path());
    const std::vector<db::Field> fields{{"A"}};
    book.beginResult(fields);
    const db::Cell cell{"a"};
    book.row({&cell, 1});
  }
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(WorkbookFile, MoreColumnsThanASheetHasAreRefused) {
  Workbook book("x");
  const std::vector<db::Field> fields(16385);
  EXPECT_THROW(book.beginResult(fields), Error);
}

TEST_F(WorkbookFile, FailuresCarryTheNumbersOfWindows) {
  const auto list = filledList({{"A"}}, {{"a"}});
  const auto failure = [&](const fs::path& path) {
    try {
      writeWorkbook(list, "x", path);
      return 0;
    } catch (const Error& error) {
      return static_cast<int>(error.number());
    }
  };
  EXPECT_EQ(failure(folder / "absent/book.xlsx"), numberOf(FileError::pathNotFound));
  EXPECT_EQ(failure(folder.path()), numberOf(FileError::pathFileAccess));
}

}  // namespace
}  // namespace korvel::output
