#include <gmock/gmock.h>

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>

#include "ui/icons/application_icon.h"
#include "ui/icons/icons.h"
#include "ui/icons/line_drawing.h"

namespace korvel::ui {
namespace {

/// The tolerance of a pixel, in steps of 255, and of all pixels together, as a share of the ink. The toolkit's reader
/// truncates the rounding of rectangles to whole percents of their sides, which shows at the corners of large ones.
constexpr int pixelTolerance = 36;
constexpr double inkTolerance = 0.01;

template <typename Draw>
QImage painted(int side, Draw draw) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  draw(painter, QRectF(image.rect()));
  return image;
}

struct Difference {
  int largest = 0;
  double share = 0;
};

Difference difference(const QImage& one, const QImage& other) {
  Difference found;
  double sum = 0;
  double ink = 0;
  for (int y = 0; y < one.height(); ++y)
    for (int x = 0; x < one.width(); ++x) {
      const int steps = std::abs(qAlpha(one.pixel(x, y)) - qAlpha(other.pixel(x, y)));
      found.largest = std::max(found.largest, steps);
      sum += steps;
      ink += qAlpha(other.pixel(x, y));
    }
  found.share = sum / std::max(ink, 1.0);
  return found;
}

TEST(LineDrawingReference, EveryIconIsDrawnAsTheToolkitsReaderDrawsIt) {
  (void)icon(IconName::Query);  // loads the drawings
  for (const IconFile& each : iconFiles()) {
    QFile file(QStringLiteral(":/korvel/ui/svg/%1.svg").arg(QLatin1String(each.file)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << each.file;
    const QByteArray svg = file.readAll();
    const std::optional<LineDrawing> drawing = LineDrawing::read(svg);
    ASSERT_TRUE(drawing) << each.file;
    QSvgRenderer reference(QByteArray(svg).replace("currentColor", "#000000"));
    for (const int side : {16, 24, 32, 48}) {
      const QImage ours =
          painted(side, [&](QPainter& painter, const QRectF& into) { drawing->paint(painter, into, Qt::black); });
      const QImage theirs =
          painted(side, [&](QPainter& painter, const QRectF& into) { reference.render(&painter, into); });
      const Difference found = difference(ours, theirs);
      EXPECT_LE(found.largest, pixelTolerance) << each.file << " at " << side;
      EXPECT_LE(found.share, inkTolerance) << each.file << " at " << side;
    }
  }
}

TEST(LineDrawingReference, TheApplicationIconForDesktopsIsTheOneThatIsDrawn) {
  QSvgRenderer drawing(applicationIconSvg());
  ASSERT_TRUE(drawing.isValid());
  // A side at which no edge is rounded to pixels in another way than by the other reader.
  constexpr int side = 200;
  const QImage ours = applicationIconPixmap(side).toImage().convertToFormat(QImage::Format_ARGB32);
  const QImage theirs = painted(side, [&](QPainter& painter, const QRectF& into) {
                          drawing.render(&painter, into);
                        }).convertToFormat(QImage::Format_ARGB32);
  ASSERT_EQ(ours.size(), theirs.size());
  double sum = 0;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const QRgb one = ours.pixel(x, y);
      const QRgb other = theirs.pixel(x, y);
      sum += std::max({std::abs(qAlpha(one) - qAlpha(other)), std::abs(qRed(one) - qRed(other)),
                       std::abs(qGreen(one) - qGreen(other)), std::abs(qBlue(one) - qBlue(other))});
    }
  EXPECT_LE(sum / (side * side), 1.0);
}

}  // namespace
}  // namespace korvel::ui
