#include "evidence/workbook_rows.h"

#include <gmock/gmock.h>

#include <fstream>
#include <functional>
#include <optional>

#include "base/atomic_file.h"
#include "base/error.h"
#include "evidence/verification.h"
#include "tests/evidence/proven_output.h"
#include "tests/support/hostile_texts.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zip_part.h"
#include "tests/support/zip_writer.h"

namespace korvel::evidence {
namespace {

using db::ColumnKind;
using test::zipOf;
using test::ZipPart;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view relations =
    "<Relationships><Relationship Id=\"rId1\" Type=\"t\" Target=\"worksheets/sheet1.xml\"/>"
    "<Relationship Id=\"rId2\" Type=\"t\" Target=\"/xl/worksheets/sheet2.xml\"/></Relationships>";
constexpr std::string_view oneSheet =
    "<workbook><sheets><sheet name=\"A\" sheetId=\"1\" r:id=\"rId1\"/></sheets></workbook>";

/// A workbook with one sheet of these rows.
std::vector<ZipPart> bookOf(const std::string& rows) {
  return {{"xl/_rels/workbook.xml.rels", std::string(relations)},
          {"xl/workbook.xml", std::string(oneSheet)},
          {"xl/worksheets/sheet1.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"}};
}

std::string textOf(std::span<const db::Field> fields, std::span<const db::Cell> cells) {
  std::string text;
  for (std::size_t i = 0; i < cells.size(); ++i)
    text += fields[i].name + "=" + (cells[i].isNull ? "null" : std::string(cells[i].text)) + ";";
  return text;
}

std::vector<std::string> rowsOf(const std::string& bytes, const WorkbookLimits& limits = {}) {
  std::vector<std::string> rows;
  readWorkbookRows(
      bytes, [&](auto fields, auto cells) { rows.push_back(textOf(fields, cells)); }, limits);
  return rows;
}

std::string sentenceOf(const std::vector<ZipPart>& parts, const WorkbookLimits& limits = {}) {
  try {
    rowsOf(zipOf(parts), limits);
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

constexpr std::string_view header = "<row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>N</t></is></c></row>";

/// A file that the writer of workbooks wrote, with what was recorded of it.
struct WrittenBook {
  std::string bytes;
  Manifest::Rows recorded;
};

WrittenBook written(const std::vector<db::Field>& fields,
                    const std::vector<std::vector<std::optional<std::string>>>& rows,
                    std::uint32_t rowsPerSheet = output::Workbook::maxRowsPerSheet) {
  WrittenBook book;
  RowRecorder recorder(RecordedForms::storedAndCells);
  RecordingWriter writer(
      std::make_unique<WorkbookWriter>([&](std::string_view part) { book.bytes += part; }, rowsPerSheet), recorder);
  writer.begin(fields);
  for (const auto& row : rows) {
    std::vector<db::Cell> cells;
    for (const auto& value : row) cells.push_back({value ? std::string_view(*value) : std::string_view(), !value});
    writer.row(cells);
  }
  writer.end();
  book.recorded = recorder.take();
  return book;
}

std::vector<Digest> digestsOf(const std::string& bytes) {
  RowRecorder recorder;
  readWorkbookRows(bytes, [&](auto fields, auto cells) {
    recorder.begin(fields);
    recorder.row(cells);
  });
  return recorder.take().each;
}

TEST(WorkbookRows, AreReadBackAsTheirCellsHoldThem) {
  const std::vector<db::Field> fields{
      {"N", ColumnKind::number}, {"D", ColumnKind::dateTime}, {"B", ColumnKind::boolean}, {"T", ColumnKind::text}};
  const WrittenBook book = written(fields, {{"42", "2004-03-07 12:00:00.000", "true", " a "},
                                            {"1.50", "2004-03-07 12:00:00.1234567", "2", std::nullopt},
                                            {"0.1", "2003-10-26 02:15:00.001", "0", ""},
                                            {std::nullopt, std::nullopt, std::nullopt, std::nullopt},
                                            {"007", "x", "1", "_x0041_\r\n=1+1 & <b>"}});
  EXPECT_THAT(rowsOf(book.bytes),
              ElementsAre("N=42;D=38053.5;B=1;T= a ;", "N=1.5;D=2004-03-07 12:00:00.1234567;B=2;T=null;",
                          "N=0.1;D=37920.0937500116;B=0;T=null;", "N=null;D=null;B=null;T=null;",
                          "N=007;D=x;B=1;T=_x0041_\r\n=1+1 & <b>;"));
  EXPECT_EQ(digestsOf(book.bytes), book.recorded.cells);
  EXPECT_NE(book.recorded.cells, book.recorded.each);
}

/// What is recorded while a workbook is written is what is read back from it, whatever the values are.
TEST(WorkbookRows, AreRecordedAsTheyAreReadBack) {
  std::vector<std::vector<std::optional<std::string>>> rows;
  for (const std::string& text : test::hostileTexts()) rows.push_back({text, "x"});
  for (const char* const text : {"_x005F_", "_x0041", "_x0041\x01", "_x00_x0041_", "__x0041_", "\t\n\r", "a\xFF",
                                 "0.30000000000000004", "123456789012345", "999999999999.999", "-0.000012345"})
    rows.push_back({text, "x"});
  rows.push_back({std::string(40'000, 'y'), "x"});
  std::string codes;
  while (codes.size() < 40'000) codes += "_x0041_";
  rows.push_back({codes, "x"});
  for (int i = 0; i < 2'000; ++i) {
    const std::string digits = std::to_string(1000 + i * 7);
    rows.push_back({digits.substr(0, 2) + "." + digits + std::to_string(i), "x"});
    rows.push_back({"2003-10-26 " + std::to_string(10 + i % 14) + ":" + std::to_string(10 + i % 50) + ":59." +
                        std::to_string(100 + i % 900),
                    "x"});
  }
  for (const ColumnKind kind : {ColumnKind::text, ColumnKind::number, ColumnKind::dateTime, ColumnKind::boolean}) {
    const WrittenBook book = written({{"_x0041_ <name>", kind}, {"Last"}}, rows);
    const auto read = digestsOf(book.bytes);
    ASSERT_EQ(read.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
      EXPECT_EQ(read[i], book.recorded.cells[i]) << rows[i][0]->substr(0, 60);
  }
}

TEST(WorkbookRows, ContinueOnTheNextSheet) {
  std::vector<std::vector<std::optional<std::string>>> rows;
  for (int i = 0; i < 10; ++i) rows.push_back({std::to_string(i)});
  const WrittenBook book = written({{"N"}}, rows, 4);
  EXPECT_EQ(digestsOf(book.bytes), book.recorded.cells);
  EXPECT_EQ(rowsOf(book.bytes).size(), 10U);
}

/// As a spreadsheet program saves it: texts apart, styles everywhere, rows and cells left out.
TEST(WorkbookRows, AreReadFromASavedWorkbook) {
  auto parts = bookOf(
      "<row r=\"1\" spans=\"1:2\"><c r=\"A1\" s=\"1\" t=\"s\"><v>0</v></c><c r=\"B1\" t=\"s\"><v>1</v></c></row>"
      "<row r=\"2\"><c r=\"B2\" s=\"3\"><v>38053.573599537034</v></c></row>"
      "<row r=\"4\" ht=\"15\"><c r=\"A4\" t=\"s\"><v>2</v></c><c r=\"B4\" t=\"b\"><v>1</v></c><c r=\"C4\" "
      "s=\"4\"/></row>"
      "<row r=\"5\"><c r=\"A5\"><f>1+1</f><v>2</v></c><c r=\"B5\" t=\"str\"><f>A1</f><v>x</v></c></row>"
      "<row r=\"6\"><c><v>7</v></c><c><v>8</v></c><c><v>9</v></c></row>"
      "<row r=\"7\"><c r=\"A7\" s=\"4\"/></row>");
  parts.push_back({"xl/sharedStrings.xml",
                   "<sst><si><t>N</t></si><si><t xml:space=\"preserve\"> D </t></si>"
                   "<si><r><rPr><b/></rPr><t>ri</t></r><r><t>ch</t></r><rPh sb=\"0\"><t>no</t></rPh></si></sst>"});
  EXPECT_THAT(rowsOf(zipOf(parts)), ElementsAre("N=null; D =38053.573599537;", "N=null; D =null;", "N=rich; D =1;",
                                                "N==1+1 2; D ==A1 x;", "N=7; D =8;=9;"));
}

TEST(WorkbookRows, HaveASentenceForWhatCannotBeRead) {
  const auto book = bookOf(std::string(header) + "<row r=\"2\"><c r=\"A2\"><v>1</v></c></row>");
  ASSERT_EQ(sentenceOf(book), "");
  const auto with = [&](const std::function<void(std::vector<ZipPart>&)>& change) {
    auto parts = book;
    change(parts);
    return sentenceOf(parts);
  };
  EXPECT_EQ(with([](auto& parts) { parts.pop_back(); }), "its part xl/worksheets/sheet1.xml is missing");
  EXPECT_EQ(with([](auto& parts) { parts.erase(parts.begin()); }), "its part xl/_rels/workbook.xml.rels is missing");
  EXPECT_EQ(with([](auto& parts) { parts[1].text = "<workbook/>"; }), "it has no sheet");
  EXPECT_EQ(with([](auto& parts) { parts[0].text = "<Relationships/>"; }), "a sheet of it cannot be found");
  EXPECT_EQ(with([](auto& parts) { parts[2].text.resize(70); }),
            "it holds XML that no workbook has: it ends within a tag");
  EXPECT_EQ(with([](auto& parts) { parts[2].moreBytes = 4; }),
            "its part xl/worksheets/sheet1.xml is shorter than its directory says");
  const auto rows = [](const std::string& text) { return sentenceOf(bookOf(std::string(header) + text)); };
  EXPECT_EQ(rows("<row r=\"1\"/>"), "the rows of a sheet are not in order");
  EXPECT_EQ(rows("<row r=\"9999999\"/>"), "the rows of a sheet are not in order");
  EXPECT_EQ(rows("<row r=\"2\"><c r=\"ZZZZ2\"/></row>"), "a cell has no place in its sheet");
  EXPECT_EQ(rows("<row r=\"2\"><c r=\"A2\" t=\"s\"><v>5</v></c></row>"),
            "a cell has a text that the workbook does not have");
}

/// Small files that claim to hold very much.
TEST(WorkbookRows, AreNotReadWithoutEnd) {
  const auto distant = bookOf(std::string(header) + "<row r=\"1048576\"><c r=\"A1048576\"><v>1</v></c></row>");
  EXPECT_EQ(sentenceOf(distant, {.rows = 1'000}), "it has far more rows than were written");
  auto bomb = bookOf(std::string(header) + std::string(20'000'000, ' '));
  EXPECT_EQ(sentenceOf(bomb, {.unpackedBytes = 1'000'000}), "its parts unpack to more than a workbook is read of");
  bomb = bookOf(std::string(header) + "<row r=\"2\"><c r=\"A2\" t=\"str\"><v>" + std::string(20'000'000, 'x') +
                "</v></c></row>");
  EXPECT_THAT(sentenceOf(bomb), HasSubstr("a tag or text that is too long"));
  std::string deep;
  for (int i = 0; i < 200'000; ++i) deep += "<is>";
  EXPECT_EQ(sentenceOf(bookOf("<row r=\"1\"><c r=\"A1\">" + deep)), "it ends within a text of a cell");
}

class ProvenWorkbook : public testing::Test {
 protected:
  void overwrite(const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; }
  std::vector<std::string> findings() { return verifyOutput(file).findings; }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder / "rows.xlsx";
};

/// The same rows in a file of another program are the same rows.
TEST_F(ProvenWorkbook, ThatWasSavedAgainHasTheSameRows) {
  writeProven(file, numberedRows(2), "xlsx");
  const std::string saved = readFile(file);
  const std::string sheet = test::partOfZip(saved, "xl/worksheets/sheet1.xml");
  auto parts = bookOf("");
  parts[2].text = sheet;
  overwrite(zipOf(parts));
  EXPECT_THAT(findings(),
              ElementsAre(HasSubstr("the file was changed"), "its rows are the same; what surrounds them was changed"));
  parts[2].text.replace(sheet.find("<t>7<"), 5, "<t>8<");
  overwrite(zipOf(parts));
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("the file was changed"), "row 2 was changed"));
}

TEST_F(ProvenWorkbook, ThatCannotBeReadIsNotCalledEmpty) {
  writeProven(file, numberedRows(3), "xlsx");
  const std::string whole = readFile(file);
  overwrite(whole.substr(0, whole.size() / 2));
  EXPECT_THAT(findings(),
              ElementsAre(HasSubstr("bytes instead of"),
                          "it is no workbook, or was cut: it does not end as one; its rows cannot be read"));
  auto parts = bookOf(std::string(header) + "<row r=\"2\"><c r=\"A2\"><v>1</v></c></row><row r=\"2\"/>");
  overwrite(zipOf(parts));
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("bytes instead of"), "the names of its columns were changed",
                                      HasSubstr("the rows of a sheet are not in order; rows are compared as far as"),
                                      "row 1 was changed", "row 2 is missing", "row 3 is missing"));
}

/// Every byte: a finding, and never a crash.
TEST_F(ProvenWorkbook, IsChangedByASingleByte) {
  writeProven(file, numberedRows(2), "xlsx");
  const std::string whole = readFile(file);
  for (std::size_t at = 0; at < whole.size(); at += 11) {
    std::string changed = whole;
    changed[at] = static_cast<char>(changed[at] ^ 0x11);
    overwrite(changed);
    EXPECT_THAT(findings(), testing::Not(testing::IsEmpty())) << at;
  }
}

/// Manifests of versions that did not digest the cells.
TEST_F(ProvenWorkbook, WithoutDigestsOfItsCellsIsNotNamedByRows) {
  ProvenFile proven(file);
  RowRecorder recorder;
  proven.write(fileOf(numberedRows(2), "xlsx", recorder));
  Manifest manifest;
  manifest.output.format = "xlsx";
  manifest.rows = recorder.take();
  proven.commit(manifest);
  EXPECT_THAT(findings(), testing::IsEmpty());
  RowRecorder ignored;
  overwrite(fileOf(numberedRows(3), "xlsx", ignored));
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("bytes instead of"), HasSubstr("its rows cannot be named")));
}

}  // namespace
}  // namespace korvel::evidence
