#include "output/pages/report_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QBuffer>
#include <QPageLayout>
#include <QPdfWriter>
#include <stdexcept>
#include <string>

#include "base/atomic_file.h"
#include "tests/pages/written_pages.h"
#include "tests/support/hostile_texts.h"

namespace korvel::output::pages {
namespace {

using test::filledList;
using testing::ContainsRegex;
using testing::HasSubstr;

struct ReportPages : WrittenPages {
  /// The position of the first such word, in points: an edge of its box, or an extent of the page.
  double edgeOf(const std::string& word, const std::string& edge) {
    const std::string boxes = test::outputOf("pdftotext -bbox '" + (folder / "pages.pdf").string() + "' -");
    const auto at = boxes.find(">" + word + "</word>");
    if (at == std::string::npos) throw std::runtime_error("no word " + word);
    const auto begin = boxes.rfind("<word", at);
    return std::stod(boxes.substr(boxes.find(edge + "=\"", begin) + edge.size() + 2));
  }
  double topOf(const std::string& word) { return edgeOf(word, "yMin"); }
  double bottomOf(const std::string& word) { return edgeOf(word, "yMax"); }
};

TEST_F(ReportPages, OfAnEmptyListAreOneWithCaptionAndHeader) {
  EXPECT_EQ(write(filledList({{"First"}, {"Second"}}, {})).pages, 1);
  const std::string shown = text();
  for (const char* part : {"ALL Audits Audits", "First", "Second", "Printed 2004-03-07", "Page 1 of 1"})
    EXPECT_THAT(shown, HasSubstr(part));
}

TEST_F(ReportPages, CarryTheirRemarkBetweenCaptionAndTableOnEveryPage) {
  const auto list = filledList({{"Alpha"}, {"Beta"}}, numberedRows(200, 2));
  const int without = write(list).pages;
  ASSERT_GT(without, 1);
  const double tableBefore = topOf("Alpha");
  texts.head.remark = "REMARK of all dates";
  const int pages = write(list).pages;
  EXPECT_GE(pages, without);
  EXPECT_EQ(count(text(), "REMARK of all dates"), static_cast<std::size_t>(pages));
  EXPECT_GT(topOf("REMARK"), topOf("ALL"));
  EXPECT_GT(topOf("Alpha"), bottomOf("REMARK"));
  EXPECT_GT(topOf("Alpha"), tableBefore);
  const std::string whole = text();
  for (int i = 0; i < 200; ++i) ASSERT_EQ(count(whole, "N" + std::to_string(i) + "E"), 1U) << i;

  // Too long for a line: it is broken and complete.
  texts.head.remark.clear();
  for (int i = 0; i < 60; ++i) texts.head.remark += "remark" + std::to_string(i) + " ";
  texts.head.remark += "END";
  write(list);
  const WrittenPage page = pagesOf(folder / "pages.pdf").front();
  for (int i = 0; i < 60; ++i) EXPECT_LT(page.word("remark" + std::to_string(i)).box.right(), page.size.width()) << i;
  EXPECT_LT(page.word("END").box.bottom(), page.word("Alpha").box.top());
}

TEST_F(ReportPages, HoldEveryRowAndRepeatTheHeader) {
  const int pages = write(filledList({{"Alpha"}, {"Beta"}}, numberedRows(500, 2))).pages;
  EXPECT_GT(pages, 3);
  const std::string shown = text();
  for (int i = 0; i < 500; ++i) ASSERT_EQ(count(shown, "N" + std::to_string(i) + "E"), 1U) << i;
  EXPECT_EQ(count(shown, "Alpha"), static_cast<std::size_t>(pages));
  EXPECT_EQ(count(shown, " of " + std::to_string(pages)), static_cast<std::size_t>(pages));
  EXPECT_LT(shown.find("N1E"), shown.find("N499E"));
}

TEST_F(ReportPages, SplitARowThatIsHigherThanAPage) {
  std::string longText;
  for (int i = 0; i < 4000; ++i) longText += "w" + std::to_string(i) + "e ";
  const int pages = write(filledList({{"A"}, {"B"}}, {{"before", "x"}, {"N1E", longText}, {"after", "y"}})).pages;
  EXPECT_GT(pages, 1);
  const std::string shown = text();
  for (int i = 0; i < 4000; ++i) ASSERT_EQ(count(shown, "w" + std::to_string(i) + "e"), 1U) << i;
  EXPECT_EQ(count(shown, "N1E"), static_cast<std::size_t>(pages)) << "each part names its row";
  EXPECT_EQ(count(shown, "after"), 1U);
}

TEST_F(ReportPages, NameARowOnEveryPageThatHoldsSomeOfIt) {
  std::string longText;
  for (int i = 0; i < 200; ++i) longText += "line\n";
  // The same with a first column of as many lines as a page holds.
  std::string key;
  for (int lines = 1; lines < 80; ++lines) {
    key += (lines > 1 ? "\nK" : "K") + std::to_string(lines) + "E";
    ASSERT_GT(write(filledList({{"A"}, {"B"}}, {{key, longText}})).pages, 2);
    const std::string shown = text();
    for (std::size_t page = 0, end = 0; (end = shown.find('\f', page)) != std::string::npos; page = end + 1)
      ASSERT_THAT(shown.substr(page, end - page), ContainsRegex("K[0-9]+E")) << lines;
  }
}

TEST_F(ReportPages, BeginALongRowWithThreeLinesOrOnTheNextPage) {
  std::string longText;
  for (int i = 0; i < 200; ++i) longText += (i > 0 ? "\nL" : "L") + std::to_string(i) + "E";
  bool begun = false;
  bool moved = false;
  for (int before = 40; before < 70; ++before) {
    auto rows = numberedRows(before, 2);
    rows.push_back({"long", longText});
    write(filledList({{"A"}, {"B"}}, rows));
    const std::string first = text(1);
    if (count(first, "N" + std::to_string(before - 1) + "E") == 0) break;  // the rows before fill it
    std::size_t lines = 0;
    while (count(first, "L" + std::to_string(lines) + "E") > 0) ++lines;
    EXPECT_TRUE(lines == 0 || lines >= 3) << before << ": " << lines;
    begun = begun || lines >= 3;
    moved = moved || lines == 0;
  }
  EXPECT_TRUE(begun);
  EXPECT_TRUE(moved);
}

TEST_F(ReportPages, TakeAValueOfAMegabyte) {
  for (const std::string& unit : {std::string("0123456789"), std::string("ポンプ")}) {
    std::string longText;
    while (longText.size() < (std::size_t{1} << 20U)) longText += unit;
    const int pages = write(filledList({{"A"}, {"B"}}, {{"x", longText}})).pages;
    EXPECT_GT(pages, 20);
    EXPECT_LT(pages, 1000);
  }
}

TEST_F(ReportPages, ShowMarkupAndControlCharactersAsText) {
  std::vector<test::ScriptedRow> rows;
  for (const std::string& value : test::hostileTexts()) rows.push_back({value, "end"});
  write(filledList({{"A"}, {"B"}}, rows));
  const std::string shown = text();
  EXPECT_THAT(shown, HasSubstr("<script>alert(1)</script>"));
  EXPECT_THAT(shown, HasSubstr("\\x1B[2J\\x7F"));
  EXPECT_THAT(shown, HasSubstr("a\\x00b"));
  EXPECT_THAT(shown, HasSubstr("größer € é"));
}

TEST_F(ReportPages, ShowOtherScripts) {
  write(filledList({{"A"}}, {{"ポンプ"}, {"Насос"}, {"αντλία"}, {"\xF0\x9F\x98\x80"}, {"\xFF\xFE"}, {"שלום"}}));
  const std::string shown = text();
  EXPECT_THAT(shown, HasSubstr("ポンプ"));
  EXPECT_THAT(shown, HasSubstr("Насос"));
  EXPECT_THAT(shown, HasSubstr("αντλία"));
  EXPECT_THAT(shown, HasSubstr("\\xFF\\xFE"));
}

TEST_F(ReportPages, BeginEverySectionOnAPageOfItsOwn) {
  const auto one = filledList({{"A"}}, {{"one"}});
  const auto two = filledList({{"B"}}, {{"two"}});
  const std::vector<ReportList> lists{{"Configuration", &one}, {"Runtime", &two}};
  ListSource source(lists, {});
  EXPECT_EQ(write(source).pages, 2);
  EXPECT_LT(text().find("one"), text().find("Runtime"));
}

TEST_F(ReportPages, AreTurnedWhereThatFitsBetter) {
  const auto orientationOf = [&](const results::ResultList& list, Orientation wanted) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageOrientation(QPageLayout::Portrait);
    const ReportList reported{"x", &list};
    ListSource source({&reported, 1}, {});
    paintReport(source, writer, texts, wanted);
    return writer.pageLayout().orientation();
  };
  const auto narrow = filledList({{"A"}, {"B"}}, numberedRows(3, 2));
  const std::vector<db::Field> fields(18, db::Field{"Application User"});
  const auto wide = filledList(fields, numberedRows(3, 18));
  EXPECT_EQ(orientationOf(narrow, Orientation::asFits), QPageLayout::Portrait);
  EXPECT_EQ(orientationOf(wide, Orientation::asFits), QPageLayout::Landscape);
  EXPECT_EQ(orientationOf(wide, Orientation::asGiven), QPageLayout::Portrait);
  // The values alone would fit portrait, but not with their padding.
  const std::vector<test::ScriptedRow> digits{test::ScriptedRow(45, "00")};
  EXPECT_EQ(orientationOf(filledList(std::vector<db::Field>(45, db::Field{"n"}), digits), Orientation::asFits),
            QPageLayout::Landscape);
}

TEST_F(ReportPages, TellTheirProgressAndCanBeCancelled) {
  const auto list = filledList({{"A"}}, numberedRows(500, 1));
  std::vector<int> told;
  const int pages = write(list, [&](int page, int) {
                      told.push_back(page);
                      return true;
                    }).pages;
  EXPECT_EQ(told.back(), pages);
  const PaintedPages some = write(list, [](int page, int) { return page < 2; });
  EXPECT_TRUE(some.cancelled);
  EXPECT_EQ(some.pages, 2);
  const PaintedPages none = write(filledList({{"A"}}, numberedRows(1500, 1)), [](int, int all) { return all > 0; });
  EXPECT_TRUE(none.cancelled);
  EXPECT_EQ(none.pages, 0) << "cancelled while pages were counted";
}

TEST_F(ReportPages, OfAnyFontAndAnyNumberOfColumnsEnd) {
  for (const double size : {0.5, 9.75, 72.0, 4000.0})
    for (const std::size_t columns : {std::size_t{0}, std::size_t{1}, std::size_t{200}}) {
      const std::vector<db::Field> fields(columns, db::Field{"Application"});
      const auto list = filledList(fields, numberedRows(2, columns == 0 ? 1 : columns));
      const ReportList reported{"x", &list};
      ListSource source({&reported, 1}, {"no such font", size});
      EXPECT_GE(write(source).pages, 1) << size << ' ' << columns;
    }
}

TEST_F(ReportPages, SpreadManyColumnsOverSheetsAndNeverOverprint) {
  constexpr std::size_t columns = 400;
  std::vector<db::Field> fields;
  const std::string letters = "xyz";
  std::vector<test::ScriptedRow> rows(letters.size());
  const auto numbered = [](char letter, std::size_t column) {
    return letter + std::to_string(1000 + column).substr(1);
  };
  for (std::size_t i = 0; i < columns; ++i) {
    fields.push_back({numbered('h', i)});
    for (std::size_t row = 0; row < rows.size(); ++row) rows[row].emplace_back(numbered(letters[row], i));
  }
  const int pages = write(filledList(fields, rows)).pages;
  EXPECT_GT(pages, 5);
  EXPECT_LT(pages, 40);
  const std::string shown = text();
  for (std::size_t i = 0; i < columns; ++i) {
    const auto times = static_cast<std::size_t>(i == 0 ? pages : 1);
    for (const char letter : letters + "h") ASSERT_EQ(count(shown, numbered(letter, i)), times) << letter << i;
  }
  EXPECT_THAT(text(1), ContainsRegex("ALL Audits Audits: columns 1 to [0-9]+ of 400"));
  EXPECT_THAT(text(pages), ContainsRegex("columns [0-9]+ to 400 of 400"));
  for (const auto& [size, words] : pagesOf(folder / "pages.pdf"))
    for (std::size_t i = 0; i < words.size(); ++i)
      for (std::size_t j = i + 1; j < words.size(); ++j) {
        const QRectF shared = words[i].box & words[j].box;
        ASSERT_FALSE(shared.width() > 0.5 && shared.height() > 4) << words[i].text << ' ' << words[j].text;
      }
}

TEST_F(ReportPages, OfARecordsColumnsAreOneSheetWide) {
  const std::vector<db::Field> fields(18, db::Field{"Application User"});
  const std::vector<test::ScriptedRow> rows{test::ScriptedRow(18, "a value of many words that is broken")};
  const auto list = filledList(fields, rows);
  EXPECT_EQ(write(list).pages, 1);
  EXPECT_EQ(count(text(), "columns"), 0U);
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter upright(&buffer);
  const ReportList reported{"x", &list};
  ListSource source({&reported, 1}, {});
  EXPECT_EQ(paintReport(source, upright, texts, Orientation::asGiven).pages, 1);
}

TEST_F(ReportPages, LetTheFailureOfTheSinkThrough) {
  const auto list = filledList({{"A"}}, numberedRows(500, 1));
  const ReportList reported{"x", &list};
  ListSource source({&reported, 1}, {});
  EXPECT_THROW(writePdf(source, texts, [](std::string_view) { throw std::runtime_error("full"); }), std::runtime_error);
}

}  // namespace
}  // namespace korvel::output::pages
