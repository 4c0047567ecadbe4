#include "ui/icons/icons.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QRegularExpression>
#include <set>

#include "tests/ui/painted.h"

namespace korvel::ui {
namespace {

int inked(const QImage& image) {
  int pixels = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) pixels += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
  }
  return pixels;
}

/// The colour of the most opaque pixel: that of the strokes, without their anti-aliased edges.
QColor inkOf(const QImage& image) {
  QColor ink(Qt::transparent);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y).alpha() > ink.alpha()) ink = image.pixelColor(x, y);
    }
  }
  return ink;
}

QImage drawn(const QIcon& icon, QIcon::Mode mode, const QPalette& palette, int side = 64) {
  const IconPalette painting(palette);
  return icon.pixmap(QSize(side, side), 1.0, mode).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST(Icons, EveryNameHasADrawingOfItsOwn) {
  std::set<std::string> files;
  std::set<IconName> names;
  for (const IconFile& file : iconFiles()) {
    files.insert(file.file);
    names.insert(file.name);
    EXPECT_FALSE(icon(file.name).isNull());
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/korvel/ui/svg/%1.svg").arg(QLatin1String(file.file)))) << file.file;
  }
  EXPECT_EQ(files.size(), iconFiles().size());
  EXPECT_EQ(names.size(), iconFiles().size());
  EXPECT_EQ(names.size(), static_cast<std::size_t>(IconName::More) + 1) << "a name without a file";
}

TEST(Icons, EveryDrawingIsUsedAndFollowsTheGridOfTheSet) {
  const QDir folder(QStringLiteral(KORVEL_SOURCE_DIR "/ui/icons/svg"));
  const QStringList drawings = folder.entryList({QStringLiteral("*.svg")}, QDir::Files);
  EXPECT_EQ(static_cast<std::size_t>(drawings.size()), iconFiles().size());
  for (const QString& name : drawings) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString svg = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(svg.contains(QStringLiteral("viewBox=\"0 0 16 16\""))) << name.toStdString();
    EXPECT_TRUE(svg.contains(QStringLiteral("stroke-width=\"1.3\""))) << name.toStdString();
    EXPECT_TRUE(svg.contains(QStringLiteral("stroke-linecap=\"round\""))) << name.toStdString();
    EXPECT_FALSE(svg.contains(QRegularExpression(QStringLiteral("#[0-9a-fA-F]{3}")))) << name.toStdString();
  }
}

TEST(Icons, AreDrawnInEveryStateSizeAndScheme) {
  for (const SchemeCase& scheme : schemes) {
    const QPalette palette = scheme.palette({});
    for (const IconFile& file : iconFiles()) {
      for (const auto mode : {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected}) {
        for (const int side : {16, 24, 32}) {
          const QImage image = drawn(icon(file.name), mode, palette, side);
          ASSERT_EQ(image.size(), QSize(side, side));
          EXPECT_GT(inked(image), side / 4) << file.file << " mode " << mode << " at " << side;
          EXPECT_LT(inked(image), side * side) << file.file << " fills its whole square";
        }
      }
    }
  }
}

TEST(Icons, TakeTheColoursOfThePaletteTheyArePaintedIn) {
  for (const SchemeCase& scheme : schemes) {
    const QPalette palette = scheme.palette({});
    const Theme& theme = Theme::of(palette);
    EXPECT_EQ(inkOf(drawn(icon(IconName::Query), QIcon::Normal, palette)), theme.text);
    EXPECT_EQ(inkOf(drawn(icon(IconName::Query), QIcon::Disabled, palette)), theme.disabled);
    EXPECT_EQ(inkOf(drawn(icon(IconName::Query, IconTone::Accent), QIcon::Normal, palette)), theme.accent);
    EXPECT_EQ(inkOf(drawn(icon(IconName::Query, IconTone::Accent), QIcon::Disabled, palette)), theme.disabled);
    EXPECT_EQ(inkOf(drawn(icon(IconName::Query, IconTone::OnFill), QIcon::Normal, palette)), theme.onFill);
  }
}

TEST(Icons, OneIconFollowsAChangeOfScheme) {
  const QIcon one = icon(IconName::Query);
  EXPECT_EQ(inkOf(drawn(one, QIcon::Normal, lightPalette())), Theme::of(lightPalette()).text);
  EXPECT_EQ(inkOf(drawn(one, QIcon::Normal, darkPalette())), Theme::of(darkPalette()).text);
  const QIcon copy = one;
  EXPECT_EQ(inkOf(drawn(copy, QIcon::Normal, lightPalette())), Theme::of(lightPalette()).text);
}

TEST(Icons, AreSharpOnDenseScreens) {
  const QIcon one = icon(IconName::Select);
  const QPixmap dense = one.pixmap(QSize(16, 16), 2.0);
  EXPECT_EQ(dense.size(), QSize(32, 32));
  EXPECT_DOUBLE_EQ(dense.devicePixelRatio(), 2.0);

  QImage canvas(32, 32, QImage::Format_ARGB32_Premultiplied);
  canvas.setDevicePixelRatio(2.0);
  canvas.fill(Qt::transparent);
  QPainter painter(&canvas);
  one.paint(&painter, QRect(0, 0, 16, 16));
  painter.end();
  EXPECT_EQ(canvas.convertToFormat(QImage::Format_ARGB32), dense.toImage().convertToFormat(QImage::Format_ARGB32));
}

TEST(Icons, AskedForNothingDrawNothing) {
  EXPECT_TRUE(icon(IconName::Print).pixmap(QSize(0, 0)).isNull());
}

}  // namespace
}  // namespace korvel::ui
