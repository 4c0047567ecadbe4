// What stands above and below the tables of written pages.
#include <gmock/gmock.h>

#include "tests/pages/written_pages.h"

namespace korvel::output::pages {
namespace {

using test::filledList;
using testing::HasSubstr;
using testing::Not;

struct HeadOfPages : WrittenPages {
  HeadOfPages() {
    texts.head.facts = {{"Trail", "FIRSTFACT PLANT01"}, {"Filters", "none"}};
    texts.head.source = "SHORTSOURCE";
    texts.head.warning = "INCOMPLETE: the limit";
    texts.head.origin = "Printed now by ANNA";
  }
  [[nodiscard]] std::vector<WrittenPage> pages() const { return pagesOf(folder / "pages.pdf"); }
  /// Nothing lies beyond the edges of a page, and no word on another one.
  void expectWholeWords() const {
    for (const auto& [size, words] : pages())
      for (std::size_t i = 0; i < words.size(); ++i) {
        EXPECT_TRUE(QRectF(QPointF(), size).contains(words[i].box)) << words[i].text;
        for (std::size_t j = i + 1; j < words.size(); ++j) {
          const QRectF shared = words[i].box & words[j].box;
          ASSERT_FALSE(shared.width() > 0.5 && shared.height() > 4) << words[i].text << ' ' << words[j].text;
        }
      }
  }
  /// Words that no line is long enough for.
  static std::string manyWords(const std::string& word, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += word + std::to_string(i) + ' ';
    return text;
  }
};

TEST_F(HeadOfPages, IsWholeOnTheFirstPageAndShortOnTheOthers) {
  const int all = write(filledList({{"Alpha"}, {"Beta"}}, numberedRows(200, 2))).pages;
  ASSERT_GT(all, 2);
  EXPECT_THAT(text(1), HasSubstr("FIRSTFACT"));
  EXPECT_THAT(text(1), Not(HasSubstr("SHORTSOURCE")));
  for (int page = 1; page <= all; ++page) {
    const std::string shown = text(page);
    EXPECT_EQ(count(shown, "INCOMPLETE: the limit"), 1U) << page;
    EXPECT_EQ(count(shown, "ALL Audits Audits"), 1U) << page;
    EXPECT_EQ(count(shown, "Printed now by ANNA"), 1U) << page;
    EXPECT_EQ(count(shown, "SHORTSOURCE"), page == 1 ? 0U : 1U) << page;
    EXPECT_EQ(count(shown, "FIRSTFACT"), page == 1 ? 1U : 0U) << page;
  }
  const std::string whole = text();
  for (int i = 0; i < 200; ++i) ASSERT_EQ(count(whole, "N" + std::to_string(i) + "E"), 1U) << i;
  const std::vector<WrittenPage> written = pages();
  EXPECT_LT(written[1].word("Alpha").box.top(), written[0].word("Alpha").box.top()) << "more rows";
  EXPECT_GT(written[0].word("Alpha").box.top(), written[0].word("INCOMPLETE:").box.bottom());
  expectWholeWords();
}

TEST_F(HeadOfPages, HasATitleOfItsOwnInsteadOfTheListsCaption) {
  texts.head.title = "OWNTITLE";
  write(filledList({{"Alpha"}}, numberedRows(2, 1)));
  EXPECT_EQ(count(text(1), "OWNTITLE"), 1U);
  EXPECT_THAT(text(1), Not(HasSubstr("Audits")));
}

TEST_F(HeadOfPages, TakesAThirdOfAPageAtMostAndLeavesTheWarningWhole) {
  texts.head.facts = {{"Trail", manyWords("server", 60)},
                      {manyWords("name", 4), "short"},
                      {"Query", manyWords("select", 400), 3},
                      {"Filters", manyWords("filter", 300)}};
  texts.head.warning = manyWords("CUT", 30) + "CUTEND";
  texts.head.remark = manyWords("remark", 40);
  texts.head.source = manyWords("source", 40);
  texts.head.origin = manyWords("origin", 60);
  const std::vector<db::Field> wide(12, db::Field{"App"});
  for (const QPageSize::PageSizeId size : {QPageSize::A4, QPageSize::A5, QPageSize::Letter})
    for (const auto& list :
         {filledList({{"Alpha"}, {"Beta"}}, numberedRows(60, 2)), filledList(wide, numberedRows(40, 12))}) {
      SCOPED_TRACE(testing::Message() << QPageSize(size).name().toStdString() << ' ' << list.columns().size());
      paper = size;
      const int all = write(list).pages;
      const std::vector<WrittenPage> written = pages();
      ASSERT_GT(all, 1);
      for (const WrittenPage& page : written) {
        const qreal margin = 12 / 25.4 * 72;
        const qreal printable = page.size.height() - 2 * margin;
        const qreal table = page.word(list.columns()[0].caption).box.top() - margin;
        EXPECT_LT(table, printable / 3 + 10);
        EXPECT_EQ(page.word("CUTEND").text, "CUTEND");
      }
      EXPECT_THAT(text(1), HasSubstr("…"));
      EXPECT_EQ(count(text(), "N39E"), 1U);
      expectWholeWords();
    }
}

TEST_F(HeadOfPages, EndsAFactOfTooManyLinesInAnEllipsis) {
  texts.head.facts = {{"Query", manyWords("select", 400), 3}, {"After", "AFTERFACT"}};
  write(filledList({{"Alpha"}}, numberedRows(3, 1)));
  const WrittenPage page = pages().front();
  const qreal first = page.word("select0").box.top();
  const qreal after = page.word("AFTERFACT").box.top();
  const qreal line = page.word("select0").box.height();
  EXPECT_GT(after - first, 2.5 * line);
  EXPECT_LT(after - first, 4.5 * line) << "three lines";
  EXPECT_EQ(count(text(), "…"), 1U);
  // Letters that are shaped are shortened in the same way.
  texts.head.facts = {{"Query", {}, 2}};
  for (int i = 0; i < 400; ++i) texts.head.facts[0].text += "ポンプ";
  write(filledList({{"Alpha"}}, numberedRows(3, 1)));
  EXPECT_EQ(count(text(), "…"), 1U);
  expectWholeWords();
}

TEST_F(HeadOfPages, WrapsItsFootBesideThePageNumber) {
  paper = QPageSize::A5;
  // Last lines of all lengths.
  for (int words = 8; words <= 18; ++words) {
    SCOPED_TRACE(words);
    texts.head.origin = manyWords("origin", words);
    write(filledList({{"Alpha"}}, numberedRows(60, 1)));
    const WrittenPage page = pages().front();
    EXPECT_EQ(page.word("origin" + std::to_string(words - 1)).text, "origin" + std::to_string(words - 1));
    EXPECT_GT(page.word("origin0").box.top(), page.word("N0E").box.bottom());
    expectWholeWords();
  }
}

struct ArrangedColumns : WrittenPages {
  void writeArranged(ColumnArrangement arrangement) {
    ListSource source("ALL Audits", std::make_shared<const results::ResultList>(list), {"Courier", 9},
                      std::move(arrangement));
    write(source);
  }
  results::ResultList list = filledList({{"Alpha"}, {"Beta"}, {"Gamma"}}, {{"aa", "bb", "cc"}, {"dd", "ee", "ff"}});
};

TEST_F(ArrangedColumns, HaveTheOrderOfTheListAndLackWhatItHides) {
  writeArranged({{{2}, {0}}, {}});
  const WrittenPage page = pagesOf(folder / "pages.pdf").front();
  EXPECT_LT(page.word("Gamma").box.right(), page.word("Alpha").box.left());
  EXPECT_LT(page.word("ff").box.right(), page.word("dd").box.left());
  EXPECT_THAT(text(), Not(HasSubstr("Beta")));
  EXPECT_THAT(text(), Not(HasSubstr("bb")));
}

TEST_F(ArrangedColumns, AreAsWideComparedWithEachOtherAsInTheList) {
  writeArranged({{{0}, {1}, {2}}, {100, 300, 100}});
  const WrittenPage page = pagesOf(folder / "pages.pdf").front();
  const qreal alpha = page.word("Alpha").box.left();
  const qreal beta = page.word("Beta").box.left();
  const qreal gamma = page.word("Gamma").box.left();
  EXPECT_NEAR((gamma - beta) / (beta - alpha), 3, 0.05);
}

}  // namespace
}  // namespace korvel::output::pages
