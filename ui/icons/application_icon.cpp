#include "ui/icons/application_icon.h"

#include <QPainter>
#include <algorithm>

#include "ui/icons/icons.h"
#include "ui/style/palettes.h"
#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

constexpr int pictureSide = 64;

void paintMark(QPainter& painter, const QRectF& place, const QPalette& palette) {
  const qreal side = std::min(place.width(), place.height());
  const QRectF tile(place.x() + (place.width() - side) / 2, place.y() + (place.height() - side) / 2, side, side);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Theme::of(palette).fill);
  painter.drawRoundedRect(tile, side * 0.22, side * 0.22);
  const qreal inset = side * 0.09;
  const IconPalette ink(palette);
  icon(IconName::Viewer, IconTone::OnFill).paint(&painter, tile.adjusted(inset, inset, -inset, -inset).toRect());
}

}  // namespace

QIcon applicationIcon() {
  QIcon mark;
  for (const int side : applicationIconSides) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintMark(painter, pixmap.rect(), lightPalette());
    painter.end();
    mark.addPixmap(pixmap);
  }
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
