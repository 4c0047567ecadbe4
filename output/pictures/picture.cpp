#include "output/pictures/picture.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <cmath>

#include "results/memory_watch.h"

namespace korvel::output::pictures {

namespace {

void paintText(QPainter& painter, const PictureText& text, QFont font) {
  font.setBold(text.isBold);
  painter.setFont(font);
  painter.setPen(text.color);
  QPointF place = text.place;
  const qreal width = text.anchor == TextAnchor::start ? 0 : QFontMetricsF(font).horizontalAdvance(text.text);
  if (text.anchor == TextAnchor::middle) place.rx() -= width / 2;
  if (text.anchor == TextAnchor::end) place.rx() -= width;
  painter.drawText(place, text.text);
}

}  // namespace

void paintPicture(QPainter& painter, const Picture& picture) {
  painter.save();
  painter.fillRect(QRectF(QPointF(), picture.size), picture.ground);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const PictureBox& box : picture.boxes) painter.fillRect(box.area, box.fill);
  for (const PictureLine& line : picture.lines) {
    painter.setPen(QPen(line.color, 1));
    painter.drawLine(line.line);
  }
  for (const PictureText& text : picture.texts) paintText(painter, text, picture.font);
  painter.restore();
}

QImage imageOf(const Picture& picture, qreal scale) {
  QImage image((picture.size * scale).toSize(), QImage::Format_RGB32);
  if (image.isNull()) throw results::outOfMemory();
  image.setDevicePixelRatio(scale);
  constexpr qreal dotsPerInch = 96;
  constexpr qreal inchesPerMetre = 1 / 0.0254;
  image.setDotsPerMeterX(static_cast<int>(std::lround(dotsPerInch * inchesPerMetre * scale)));
  image.setDotsPerMeterY(image.dotsPerMeterX());
  image.setText(QStringLiteral("Title"), picture.title);
  image.setText(QStringLiteral("Description"), picture.description);
  QPainter painter(&image);
  paintPicture(painter, picture);
  return image;
}

void writePng(const Picture& picture, qreal scale, const ByteSink& sink) {
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  if (!imageOf(picture, scale).save(&file, "PNG")) throw results::outOfMemory();
  sink({file.data().constData(), static_cast<std::size_t>(file.data().size())});
}

}  // namespace korvel::output::pictures
