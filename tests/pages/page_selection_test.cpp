// Which pages of a report are written, and how often.
#include <gmock/gmock.h>

#include <QBuffer>
#include <QPdfWriter>
#include <regex>

#include "tests/pages/written_pages.h"

namespace korvel::output::pages {
namespace {

using test::filledList;
using testing::ElementsAre;

struct SelectedPages : WrittenPages {
  /// Nine pages or so, a row among them that is longer than a page.
  static results::ResultList report() {
    auto rows = numberedRows(150, 2);
    std::string longText;
    for (int i = 0; i < 200; ++i) longText += (i > 0 ? "\nL" : "L") + std::to_string(i) + "E";
    rows.insert(rows.begin() + 70, {"long", longText});
    return filledList({{"Alpha"}, {"Beta"}}, rows);
  }
  static PageSelection selected(const char* ranges, int copies = 1, bool collated = true) {
    return {QPageRanges::fromString(QLatin1String(ranges)), copies, collated};
  }
  /// The numbers of the pages that were written, in their order.
  std::vector<int> pages(const PageSelection& selection) {
    painted = write(list, {}, selection);
    std::vector<int> numbers;
    const std::string shown = text();
    static const std::regex mark("Page ([0-9]+) of ([0-9]+)");
    for (std::sregex_iterator found(shown.begin(), shown.end(), mark), end; found != end; ++found) {
      EXPECT_EQ(std::stoi((*found)[2]), all) << "the whole report's";
      numbers.push_back(std::stoi((*found)[1]));
    }
    EXPECT_EQ(painted.pages, static_cast<int>(numbers.size()));
    EXPECT_EQ(painted.ofPages, all);
    EXPECT_FALSE(painted.cancelled);
    return numbers;
  }

  results::ResultList list = report();
  int all = write(list).pages;
  PaintedPages painted;
};

TEST_F(SelectedPages, AreThoseOfTheRanges) {
  ASSERT_GE(all, 6);
  EXPECT_THAT(pages(selected("1")), ElementsAre(1));
  EXPECT_THAT(pages(selected("5,2-3")), ElementsAre(2, 3, 5));
  EXPECT_EQ(pages({}).size(), static_cast<std::size_t>(all));
}

TEST_F(SelectedPages, EndWhereTheReportDoes) {
  const QByteArray over = QByteArray::number(all) + "-999";
  EXPECT_THAT(pages(selected(over.constData())), ElementsAre(all));
}

TEST_F(SelectedPages, AreTheSameAsInTheWholeReport) {
  std::vector<std::string> whole;
  for (int page = 1; page <= all; ++page) whole.push_back(text(page));
  for (int page = 1; page <= all; ++page) {
    PageSelection one;
    one.ranges.addPage(page);
    write(list, {}, one);
    EXPECT_EQ(text(), whole.at(static_cast<std::size_t>(page) - 1)) << page;
  }
}

TEST_F(SelectedPages, AreCopiedOneByOneOrTogether) {
  EXPECT_THAT(pages(selected("2-4", 2, true)), ElementsAre(2, 3, 4, 2, 3, 4));
  EXPECT_THAT(pages(selected("2,4", 3, false)), ElementsAre(2, 2, 2, 4, 4, 4));
  EXPECT_EQ(pages(selected("", 2, true)).size(), static_cast<std::size_t>(2 * all));
}

TEST_F(SelectedPages, AreWholeInEveryCopy) {
  write(list, {}, selected("3"));
  const std::string one = text();
  for (const bool collated : {true, false}) {
    write(list, {}, selected("3", 2, collated));
    EXPECT_EQ(text(1), one);
    EXPECT_EQ(text(2), one);
  }
}

TEST_F(SelectedPages, OfWhichTheReportHasNoneLeaveTheDeviceAlone) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  const ReportList reported{"x", &list};
  ListSource source({&reported, 1}, {});
  const PaintedPages none = paintReport(source, writer, texts, Orientation::asFits, {}, selected("900-901"));
  EXPECT_EQ(none.pages, 0);
  EXPECT_EQ(none.ofPages, all);
  EXPECT_FALSE(none.cancelled);
  EXPECT_EQ(buffer.size(), 0);
}

TEST_F(SelectedPages, TellTheirProgressByAllThatIsDrawn) {
  std::vector<std::pair<int, int>> told;
  const PageProgress progress = [&](int page, int pages) {
    if (pages > 0) told.emplace_back(page, pages);
    return true;
  };
  write(list, progress, selected("2-3", 2, true));
  EXPECT_THAT(told, ElementsAre(std::pair(1, 4), std::pair(2, 4), std::pair(3, 4), std::pair(4, 4)));
  const PaintedPages some = write(
      list, [](int page, int /*pages*/) { return page < 2; }, selected("2-5"));
  EXPECT_TRUE(some.cancelled);
  EXPECT_EQ(some.pages, 2);
}

TEST_F(SelectedPages, OfAReportWithColumnsOnSeveralSheetsAreThoseOfItsSheets) {
  const std::vector<db::Field> fields(100, db::Field{"Application"});
  list = filledList(fields, numberedRows(3, 100));
  all = write(list).pages;
  ASSERT_GE(all, 3);
  const std::string last = text(all);
  EXPECT_THAT(pages(selected("2")), ElementsAre(2));
  PageSelection one;
  one.ranges.addPage(all);
  write(list, {}, one);
  EXPECT_EQ(text(), last);
}

}  // namespace
}  // namespace korvel::output::pages
