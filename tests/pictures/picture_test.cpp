#include "output/pictures/picture.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QXmlStreamReader>
#include <string>

namespace korvel::output::pictures {
namespace {

Picture drawing() {
  QFont font = QGuiApplication::font();
  font.setPixelSize(12);
  Picture picture{
      {100, 50}, QColor(QRgb{0xFFFFFF}), font, QStringLiteral("Boxes & <lines>"), QStringLiteral("one box")};
  picture.boxes = {{{10, 20, 30, 20}, QColor(QRgb{0x1F6FEB})}, {{50.004, 20, 10.126, 5}, QColor(QRgb{0x1F6FEB})}};
  picture.lines = {{{0, 40.5, 100, 40.5}, QColor(QRgb{0x404040})}};
  picture.texts = {{{90, 12}, TextAnchor::end, QStringLiteral("\u0001 ä<b>\"\uFFFF"), QColor(QRgb{0}), true}};
  return picture;
}

std::string svg(const Picture& picture) {
  std::string file;
  writeSvg(picture, [&](std::string_view bytes) { file += bytes; });
  return file;
}

TEST(Picture, AnSvgFileHasItsShapesAndTexts) {
  const std::string file = svg(drawing());
  EXPECT_NE(file.find("<path fill=\"#1f6feb\" d=\"M10 20h30v20h-30zM50 20h10.13v5h-10.13z\"/>"), std::string::npos)
      << file;
  EXPECT_NE(file.find("<path stroke=\"#404040\" d=\"M0 40.5L100 40.5\"/>"), std::string::npos) << file;
  EXPECT_NE(file.find("<text x=\"90\" y=\"12\" fill=\"#000000\" text-anchor=\"end\" font-weight=\"bold\">"),
            std::string::npos)
      << file;
  // Nothing that a program would have to fetch.
  EXPECT_EQ(file.find("href"), std::string::npos);
  EXPECT_EQ(file.find("url("), std::string::npos);
}

TEST(Picture, AnSvgFileIsWellFormedWhateverItsTextsHold) {
  const std::string file = svg(drawing());
  QXmlStreamReader reader(QByteArray::fromStdString(file));
  QStringList texts;
  while (!reader.atEnd())
    if (reader.readNext() == QXmlStreamReader::Characters && !reader.isWhitespace()) texts << reader.text().toString();
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
  EXPECT_EQ(texts, (QStringList{QStringLiteral("Boxes & <lines>"), QStringLiteral("one box"),
                                QStringLiteral("\uFFFD ä<b>\"\uFFFD")}));
}

TEST(Picture, AnImageHasItsBoxesInEveryScale) {
  for (const qreal scale : {1.0, 2.0}) {
    std::string file;
    writePng(drawing(), scale, [&](std::string_view bytes) { file += bytes; });
    const QImage image = QImage::fromData(QByteArray::fromStdString(file), "PNG");
    ASSERT_EQ(image.size(), (QSizeF(100, 50) * scale).toSize());
    const auto colorAt = [&](int x, int y) { return image.pixelColor((QPointF(x, y) * scale).toPoint()); };
    EXPECT_EQ(colorAt(10, 20), QColor(QRgb{0x1F6FEB}));
    EXPECT_EQ(colorAt(39, 39), QColor(QRgb{0x1F6FEB}));
    EXPECT_EQ(colorAt(9, 20), QColor(QRgb{0xFFFFFF}));
    EXPECT_EQ(colorAt(45, 19), QColor(QRgb{0xFFFFFF}));
    EXPECT_EQ(image.text(QStringLiteral("Title")), QStringLiteral("Boxes & <lines>"));
  }
}

}  // namespace
}  // namespace korvel::output::pictures
