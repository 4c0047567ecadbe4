// The shapes that the parts of the style are drawn with.
#include <QPainterPath>
#include <algorithm>

#include "ui/style/style_parts.h"

namespace korvel::ui {

void drawRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& ground, const QColor& line,
                 qreal width) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(ground.isValid() ? QBrush(ground) : Qt::NoBrush);
  QRectF outline = rect;
  if (line.isValid()) {
    painter.setPen(QPen(line, width));
    const qreal half = width / 2;
    outline.adjust(half, half, -half, -half);
    radius = std::max(0.0, radius - half);
  } else {
    painter.setPen(Qt::NoPen);
  }
  painter.drawRoundedRect(outline, radius, radius);
  painter.restore();
}

void drawTick(QPainter& painter, const QRectF& box, const QColor& color) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal unit = box.width() / 14.0;
  painter.setPen(QPen(color, 1.7 * unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  QPainterPath path(box.topLeft() + QPointF(3.7, 7.3) * unit);
  path.lineTo(box.topLeft() + QPointF(6.1, 9.6) * unit);
  path.lineTo(box.topLeft() + QPointF(10.3, 4.9) * unit);
  painter.drawPath(path);
  painter.restore();
}

bool drawNothing(const Canvas& /*canvas*/) {
  return true;
}

void drawTriangle(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side) {
  const qreal half = side / 2;
  const qreal low = side * 0.36;  // half the height
  QPolygonF shape;
  switch (direction) {
    case Qt::UpArrow:
      shape << QPointF(-half, low) << QPointF(half, low) << QPointF(0, -low);
      break;
    case Qt::DownArrow:
      shape << QPointF(-half, -low) << QPointF(half, -low) << QPointF(0, low);
      break;
    case Qt::LeftArrow:
      shape << QPointF(low, -half) << QPointF(low, half) << QPointF(-low, 0);
      break;
    default:
      shape << QPointF(-low, -half) << QPointF(-low, half) << QPointF(low, 0);
      break;
  }
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.translate(rect.center());
  painter.drawPolygon(shape);
  painter.restore();
}

void drawChevron(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side) {
  const qreal half = side / 2;
  const qreal low = side / 4;
  QPolygonF line;
  switch (direction) {
    case Qt::UpArrow:
      line << QPointF(-half, low) << QPointF(0, -low) << QPointF(half, low);
      break;
    case Qt::DownArrow:
      line << QPointF(-half, -low) << QPointF(0, low) << QPointF(half, -low);
      break;
    case Qt::LeftArrow:
      line << QPointF(low, -half) << QPointF(-low, 0) << QPointF(low, half);
      break;
    default:
      line << QPointF(-low, -half) << QPointF(low, 0) << QPointF(-low, half);
      break;
  }
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, std::max(1.3, side * 0.17), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.translate(rect.center());
  painter.drawPolyline(line);
  painter.restore();
}

}  // namespace korvel::ui
