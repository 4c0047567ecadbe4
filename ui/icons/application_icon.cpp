#include "ui/icons/application_icon.h"

#include <QFile>
#include <QPainter>
#include <algorithm>

#include "ui/icons/icons.h"
#include "ui/style/palettes.h"
#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

constexpr int pictureSide = 64;
// Of a side's length: the radius of the tile's corners, and what lies between the tile's edge and the drawing.
constexpr qreal cornerShare = 0.22;
constexpr qreal insetShare = 0.09;
// The drawing's own units.
constexpr int drawingSide = 16;

void paintMark(QPainter& painter, const QRectF& place, const QPalette& palette) {
  const qreal side = std::min(place.width(), place.height());
  const QRectF tile(place.x() + (place.width() - side) / 2, place.y() + (place.height() - side) / 2, side, side);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Theme::of(palette).fill);
  painter.drawRoundedRect(tile, side * cornerShare, side * cornerShare);
  const qreal inset = side * insetShare;
  const IconPalette ink(palette);
  icon(IconName::Viewer, IconTone::OnFill).paint(&painter, tile.adjusted(inset, inset, -inset, -inset).toRect());
}

}  // namespace

QPixmap applicationIconPixmap(int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  paintMark(painter, pixmap.rect(), lightPalette());
  return pixmap;
}

QByteArray applicationIconSvg() {
  static_cast<void>(icon(IconName::Viewer));  // loads the drawings
  QFile file(QStringLiteral(":/korvel/ui/svg/viewer.svg"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const Theme theme = Theme::of(lightPalette());
  constexpr int side = 256;
  constexpr qreal inset = side * insetShare;
  const auto number = [](qreal value) { return QString::number(value); };
  // The drawing becomes a group of the tile: readers of the small profile of SVG place no document within another.
  const QString group = QStringLiteral("<g transform=\"translate(%1 %1) scale(%2)\"")
                            .arg(number(inset), number((side - 2 * inset) / drawingSide));
  QString drawing = QString::fromUtf8(file.readAll());
  drawing.replace(QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 16 16\""), group);
  drawing.replace(QStringLiteral("</svg>"), QStringLiteral("</g>"));
  drawing.replace(QStringLiteral("currentColor"), theme.onFill.name());
  return QStringLiteral(
             "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %1 %1\" width=\"%1\" height=\"%1\">\n"
             "<rect width=\"%1\" height=\"%1\" rx=\"%2\" fill=\"%3\"/>\n")
      .arg(number(side), number(side * cornerShare), theme.fill.name())
      .append(drawing)
      .append(QStringLiteral("</svg>\n"))
      .toUtf8();
}

QIcon applicationIcon() {
  QIcon mark;
  for (const int side : applicationIconSides) mark.addPixmap(applicationIconPixmap(side));
  return mark;
}

ApplicationIconPicture::ApplicationIconPicture(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ApplicationIconPicture::sizeHint() const {
  return {px(this, pictureSide), px(this, pictureSide)};
}

void ApplicationIconPicture::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  paintMark(painter, rect(), palette());
}

}  // namespace korvel::ui
