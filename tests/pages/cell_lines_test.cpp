#include "output/pages/cell_lines.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPdfWriter>
#include <string>

namespace korvel::output::pages {
namespace {

struct BrokenText : testing::Test {
  BrokenText() {
    buffer.open(QIODevice::WriteOnly);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(8);
    face = std::make_unique<GlyphFace>(font, writer);
  }

  /// The lines of a column that is `characters` digits wide, with | between them.
  std::string broken(std::string_view value, int characters) {
    const qreal width = face->width(QString(characters, u'0')) * 1.001;
    breakIntoLines(shownOnPaper(value), width, *face, writer, cell);
    QString lines;
    for (std::size_t i = 0; i < cell.lines.size(); ++i)
      lines += (i > 0 ? QStringLiteral("|") : QString()) + cell.line(i).trimmed().toString();
    return lines.toStdString();
  }

  QBuffer buffer;
  QPdfWriter writer{&buffer};
  std::unique_ptr<GlyphFace> face;
  CellLines cell;
};

TEST_F(BrokenText, EndsItsLinesAtBlanksAndSeparators) {
  EXPECT_EQ(broken("00 00 00", 5), "00 00|00");
  EXPECT_EQ(broken("0000/aa_0000", 8), "0000/aa_|0000");
  EXPECT_EQ(broken("", 5), "");
}

TEST_F(BrokenText, BreaksWordsThatFitNoLine) {
  EXPECT_EQ(broken("0123456789", 4), "0123|4567|89");
  EXPECT_EQ(broken("0 0123456789", 4), "0|0123|4567|89");
}

TEST_F(BrokenText, KeepsDatesAndTimesWhole) {
  EXPECT_EQ(broken("2004-03-07 13:45:59.123", 14), "2004-03-07|13:45:59.123");
}

TEST_F(BrokenText, SplitsANumberThatFitsNoLineAtItsSeparators) {
  EXPECT_EQ(broken("{0A1B-1111-2222-3333-4444}", 13), "{0A1B-|1111-2222-|3333-4444}");
  EXPECT_EQ(broken("1111-22222222", 8), "1111-|22222222");
}

TEST_F(BrokenText, EndsALineWhereTheValueDoes) {
  EXPECT_EQ(broken("00\r\n00", 20), "00\u21B5|00");
  EXPECT_EQ(broken("00\n\n00\n", 20), "00\\n|\\n|00\\n");
}

TEST_F(BrokenText, ShowsWhatCannotBeSeen) {
  EXPECT_EQ(broken("a\tb\x1B[2J\x7F", 40), "a\\tb\\x1B[2J\\x7F");
  EXPECT_EQ(broken("a\xE2\x80\xAE"
                   "b",
                   40),
            "a\\u202Eb");
  EXPECT_EQ(broken("a\xFF\xE2\x82", 40), "a\\xFF\\xE2\\x82");
}

TEST_F(BrokenText, LosesNothingOfALongText) {
  const std::string family = "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9";
  for (const std::string& unit :
       {std::string("word "), std::string("x"), std::string("שלום "), family, std::string("ポ")}) {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += unit;
    broken(text, 10);
    QString together;
    for (std::size_t i = 0; i < cell.lines.size(); ++i) together += cell.line(i);
    QString wanted = QString::fromStdString(text);
    EXPECT_EQ(together.remove(u' '), wanted.remove(u' ')) << unit;
    EXPECT_GT(cell.lines.size(), 100U) << unit;
    for (std::size_t i = 0; i < cell.lines.size(); ++i) {
      ASSERT_FALSE(cell.line(i).isEmpty()) << unit;
      ASSERT_FALSE(cell.line(i).front().isLowSurrogate()) << unit << i;
    }
  }
}

TEST_F(BrokenText, NeverCutsACharacterInTwo) {
  // Long texts are shaped in parts; wherever a part ends, it may not be between the halves of a character.
  for (const std::string& before : {std::string(), std::string("x"), std::string("xy")}) {
    std::string text = before;
    for (int i = 0; i < 3000; ++i) text += "\xF0\x9F\x98\x80";
    broken(text, 10);
    for (std::size_t i = 0; i < cell.lines.size(); ++i) {
      ASSERT_FALSE(cell.line(i).front().isLowSurrogate()) << before << i;
      ASSERT_FALSE(cell.line(i).back().isHighSurrogate()) << before << i;
    }
  }
}

TEST_F(BrokenText, HasTheDirectionOfAllOfIt) {
  broken("שלום\nabc", 40);
  EXPECT_TRUE(cell.rightToLeft);
  broken("12 שלום abc", 40);
  EXPECT_TRUE(cell.rightToLeft);
  broken("abc\nשלום", 40);
  EXPECT_FALSE(cell.rightToLeft);
  broken("ポンプ", 40);
  EXPECT_FALSE(cell.rightToLeft);
}

TEST_F(BrokenText, FitsItsColumn) {
  const qreal width = face->width(QStringLiteral("0000000000"));
  breakIntoLines(QStringLiteral("some words and a-very-long_one/with.separators and WWWWWWWWWWWWWWWWWWWWWWWWWW"), width,
                 *face, writer, cell);
  for (std::size_t i = 0; i < cell.lines.size(); ++i)
    EXPECT_LE(face->width(cell.line(i).trimmed()), width) << cell.line(i).toString().toStdString();
}

}  // namespace
}  // namespace korvel::output::pages
