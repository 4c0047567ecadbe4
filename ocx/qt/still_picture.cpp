#include "ocx/qt/still_picture.h"

#include <QImage>
#include <QPainter>
#include <QWidget>

namespace korvel::ocx {

void paintStill(QWidget& viewer, QImage& picture) {
  const double density = viewer.devicePixelRatioF();
  if (!viewer.isVisible()) viewer.resize((QSizeF(picture.size()) / density).toSize());
  picture.fill(viewer.palette().color(QPalette::Window));
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.scale(static_cast<double>(picture.width()) / viewer.width(),
                static_cast<double>(picture.height()) / viewer.height());
  viewer.render(&painter);
}

}  // namespace korvel::ocx
