// Rendered pages: positions and colours.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "output/pages/report_sheets.h"
#include "output/report_source.h"
#include "tests/support/filled_list.h"

namespace korvel::output::pages {
namespace {

using test::filledList;

constexpr int dotsPerInch = 200;
/// Grey values of what is drawn with room for smoothed edges: text, fainter text, lines, and the header's ground.
constexpr int inkMost = 60;
constexpr int faintLeast = 95;
constexpr int faintMost = 130;
constexpr int lineMost = 200;
constexpr int groundLeast = 228;
constexpr int groundMost = 244;

/// One page, and the position of its table.
class Picture {
 public:
  explicit Picture(QImage image) : image_(std::move(image)) {
    for (int y = 0; y < image_.height() && table_.isNull(); ++y)
      for (int x = 0; x < image_.width() && table_.isNull(); ++x)
        if (groundFrom(x, y) >= leastGround) {
          int bottom = y;
          while (bottom + 1 < image_.height() && isGround(x + 1, bottom + 1)) ++bottom;
          int right = x;
          while (right + 1 < image_.width() && image_.pixelColor(right + 1, y) != QColor(Qt::white)) ++right;
          table_ = {QPoint(x, y), QPoint(right, bottom)};
        }
  }

  /// The shaded row of the headers, without its frame; null where there is none.
  [[nodiscard]] QRect header() const { return table_; }
  /// Below the header, across the table.
  [[nodiscard]] QRect body() const {
    return {QPoint(table_.left(), table_.bottom() + 3), QPoint(table_.right(), image_.height() - 1)};
  }
  [[nodiscard]] QRect aboveHeader() const { return {QPoint(0, 0), QPoint(image_.width() - 1, table_.top() - 3)}; }
  [[nodiscard]] int grey(int x, int y) const { return qGray(image_.pixel(x, y)); }

  [[nodiscard]] int darkest(const QRect& area) const {
    int least = 255;
    for (int y = area.top(); y <= area.bottom(); ++y)
      for (int x = area.left(); x <= area.right(); ++x) least = std::min(least, grey(x, y));
    return least;
  }
  /// Around all that is darker than lines in the area.
  [[nodiscard]] QRect inkIn(const QRect& area, int most = faintMost) const {
    QRect box;
    for (int y = area.top(); y <= area.bottom(); ++y)
      for (int x = area.left(); x <= area.right(); ++x)
        if (grey(x, y) <= most) box |= QRect(x, y, 1, 1);
    return box;
  }
  /// The lines of text in the area, from above.
  [[nodiscard]] std::vector<QRect> textLines(const QRect& area) const {
    std::vector<QRect> lines;
    int begun = -1;
    for (int y = area.top(); y <= area.bottom() + 1; ++y) {
      const bool ink = y <= area.bottom() && darkest({area.left(), y, area.width(), 1}) <= faintMost;
      if (ink && begun < 0) begun = y;
      if (!ink && begun >= 0) {
        lines.push_back(inkIn({area.left(), begun, area.width(), y - begun}));
        begun = -1;
      }
    }
    return lines;
  }
  /// The positions of the lines between the header's columns, with the table's edges.
  [[nodiscard]] std::vector<int> columnEdges() const {
    std::vector<int> edges;
    for (int x = std::max(0, table_.left() - 4); x < std::min(image_.width(), table_.right() + 4); ++x) {
      bool whole = true;
      for (int y = table_.top() + 2; y < table_.bottom() - 2; ++y) whole = whole && grey(x, y) <= lineMost;
      if (whole && (edges.empty() || x > edges.back() + 3)) edges.push_back(x);
    }
    return edges;
  }
  /// Below the header, one column, its lines left out.
  [[nodiscard]] QRect column(std::size_t i) const {
    const std::vector<int> edges = columnEdges();
    return {QPoint(edges.at(i) + 3, body().top()), QPoint(edges.at(i + 1) - 3, body().bottom())};
  }

 private:
  /// Wider than the smoothed edges of letters.
  static constexpr int leastGround = 20;
  [[nodiscard]] int groundFrom(int x, int y) const {
    int end = x;
    while (end < image_.width() && isGround(end, y)) ++end;
    return end - x;
  }
  [[nodiscard]] bool isGround(int x, int y) const { return grey(x, y) >= groundLeast && grey(x, y) <= groundMost; }

  QImage image_;
  QRect table_;
};

struct RenderedPages : testing::Test {
  Picture draw(const results::ResultList& list, int page = 1) {
    const ReportList reported{"Runtime", &list};
    ReportSheets sheets(std::make_unique<ListSource>(std::span(&reported, 1), PrintFont{"DejaVu Sans", 9}), texts);
    EXPECT_TRUE(sheets.layOut());
    count = sheets.count();
    return Picture(sheets.picture(page, dotsPerInch));
  }

  PageTexts texts;
  int count = 0;
};

/// Many short lines, more than a page holds.
std::string manyLines() {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "line\n";
  return text;
}

TEST_F(RenderedPages, HaveTheCaptionAboveAShadedHeader) {
  const Picture page = draw(filledList({{"First"}, {"Second"}}, {{"a", "b"}}));
  ASSERT_FALSE(page.header().isNull());
  const QRect caption = page.inkIn(page.aboveHeader());
  EXPECT_GT(caption.height(), dotsPerInch / 20) << "whole letters";
  EXPECT_LT(caption.bottom(), page.header().top());
  ASSERT_EQ(page.textLines(page.aboveHeader()).size(), 1U);
  // Only the headers have the background, which ends with them.
  ASSERT_EQ(page.textLines(page.header()).size(), 1U);
  EXPECT_GT(page.header().height(), page.textLines(page.header()).front().height());
  EXPECT_EQ(page.grey(page.body().left() + 3, page.body().top() + 2), 255);
}

TEST_F(RenderedPages, HaveTheirTextInBlackOrInTheFainterInkOfARest) {
  for (const std::string& key : {std::string("HHHHHHH"), std::string("ששששש"), std::string("ポポポポ")}) {
    SCOPED_TRACE(key);
    const auto list = filledList({{"HHHHHHHHHHHH"}, {"HHH"}}, {{key, manyLines()}});
    const Picture first = draw(list);
    ASSERT_GT(count, 1);
    EXPECT_LE(first.darkest(first.aboveHeader()), inkMost) << "the caption";
    EXPECT_LE(first.darkest(first.header()), inkMost) << "the headers";
    EXPECT_LE(first.darkest(first.column(0)), inkMost) << "the row's first column";
    EXPECT_LE(first.darkest(first.column(1)), inkMost);
    const Picture second = draw(list, 2);
    EXPECT_GE(second.darkest(second.column(0)), faintLeast) << "whose rest it is";
    EXPECT_LE(second.darkest(second.column(0)), faintMost);
    EXPECT_LE(second.darkest(second.column(1)), inkMost) << "the rest itself";
    EXPECT_LE(second.darkest(second.header()), inkMost);
    EXPECT_EQ(second.textLines(second.column(0)).size(), 1U);
  }
}

TEST_F(RenderedPages, KeepTextOffTheLines) {
  const Picture page = draw(filledList({{"HHHHHHHH"}, {"HHHHHHHH"}}, {{"HHHHHHHH", "HHHHHHHH"}}));
  const std::vector<int> edges = page.columnEdges();
  ASSERT_EQ(edges.size(), 3U);
  for (std::size_t i = 0; i < 2; ++i) {
    // From line to line, without the lines themselves.
    const QRect ink = page.inkIn({QPoint(edges[i], page.body().top()), QPoint(edges[i + 1], page.body().bottom())});
    const int leastDistance = 3 * dotsPerInch / 72 / 2;  // a point and a half
    EXPECT_GT(ink.left() - edges[i], leastDistance) << i;
    EXPECT_GT(edges[i + 1] - ink.right(), leastDistance) << i;
  }
}

TEST_F(RenderedPages, ACellHasTheDirectionOfItsWholeText) {
  // The ellipsis of a line is where its cell's writing direction ends.
  const auto list = filledList({{"A"}}, {{"שלום\nHHHH............"}, {"HHHH\nשששש............"}});
  const Picture page = draw(list);
  const std::vector<QRect> lines = page.textLines(page.column(0));
  ASSERT_EQ(lines.size(), 4U);
  const auto heightOf = [&](const QRect& part) { return page.inkIn(part).height(); };
  const auto leftOf = [](const QRect& line) { return QRect(line.topLeft(), QSize(line.width() / 3, line.height())); };
  const auto rightOf = [&](const QRect& line) { return leftOf(line).translated(line.width() - line.width() / 3, 0); };
  EXPECT_LT(heightOf(leftOf(lines[1])), lines[1].height() / 2) << "points";
  EXPECT_GT(heightOf(rightOf(lines[1])), lines[1].height() / 2) << "letters";
  EXPECT_GT(heightOf(leftOf(lines[3])), lines[3].height() / 2) << "letters";
  EXPECT_LT(heightOf(rightOf(lines[3])), lines[3].height() / 2) << "points";
}

TEST_F(RenderedPages, OfAnEmptyReportHaveNoTable) {
  class Nothing final : public ReportSource {
   public:
    void rewind() override {}
    bool nextSection(SectionHead& /*head*/) override { return false; }
    bool nextRow(std::vector<std::string_view>& /*cells*/) override { return false; }
  };
  ReportSheets sheets(std::make_unique<Nothing>(), texts);
  EXPECT_TRUE(sheets.layOut());
  EXPECT_TRUE(Picture(sheets.picture(1, dotsPerInch)).header().isNull());
}

}  // namespace
}  // namespace korvel::output::pages
