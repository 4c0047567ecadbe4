#include "control/widest_text.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <random>

#include "control/texts.h"

namespace korvel::control {
namespace {

qreal widestOf(const QFont& font, const std::vector<std::string>& texts) {
  WidestText widest(font);
  for (const std::string& text : texts) widest.offer(text);
  return widest.width();
}

qreal shaped(const QFont& font, const QString& text) {
  return QFontMetricsF(font).horizontalAdvance(text);
}

TEST(WidestText, IsTheWidthOfTheShapedText) {
  const QFont font(QStringLiteral("DejaVu Sans"), 10);
  EXPECT_EQ(widestOf(font, {}), 0);
  EXPECT_EQ(widestOf(font, {"", ""}), 0);
  EXPECT_EQ(widestOf(font, {"a", "iii", "WAVE"}), shaped(font, QStringLiteral("WAVE")));
  // The longest text is not always the widest one.
  EXPECT_EQ(widestOf(font, {"llllllll", "WWWWWW"}), shaped(font, QStringLiteral("WWWWWW")));
}

TEST(WidestText, ReadsLettersOfEveryKind) {
  const QFont font(QStringLiteral("DejaVu Sans"), 10);
  for (const char* text : {"\u00C4nderung \u00DCbergr\u00F6\u00DFe", "\u0391\u03B8\u03AE\u03BD\u03B1",
                           "\u4E2D\u6587\u5B57\u7B26", "\U0001F600 done", "e\u0301te\u0301", "bad \xFF byte \xC3"})
    EXPECT_EQ(widestOf(font, {"i", text, "."}), shaped(font, fromUtf8(text))) << text;
}

TEST(WidestText, MeasuresWhatACellPaints) {
  const QFont font;
  EXPECT_EQ(widestOf(font, {"two\nlines"}), shaped(font, QStringLiteral("two lines")));
  EXPECT_EQ(widestOf(font, {"wwwwwwwwwwwww", "ab\u202Ecd\u2066\u2069"}),
            std::max(shaped(font, QStringLiteral("wwwwwwwwwwwww")),
                     shaped(font, QStringLiteral("ab\\u202Ecd\\u2066\\u2069"))));
  const std::string endless(100000, 'x');
  EXPECT_EQ(widestOf(font, {endless}), shaped(font, QString(1000, QLatin1Char('x')) + QChar(0x2026)));
}

TEST(WidestText, OfManyTextsNoneIsWider) {
  std::mt19937 random(4711);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same texts in every run
  for (const bool italic : {false, true}) {
    QFont font(QStringLiteral("DejaVu Serif"), 11);
    font.setItalic(italic);
    std::vector<std::string> texts;
    qreal widest = 0;
    for (int i = 0; i < 3000; ++i) {
      std::string text;
      for (int length = 0; length < 24; ++length) text += static_cast<char>(' ' + random() % 95);
      widest = std::max(widest, shaped(font, fromUtf8(text)));
      texts.push_back(text);
    }
    EXPECT_EQ(widestOf(font, texts), widest);
  }
}

}  // namespace
}  // namespace korvel::control
