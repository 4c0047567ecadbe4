#pragma once

#include <QByteArray>
#include <QPainterPath>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

class QColor;
class QPainter;

namespace korvel::ui {

/// A drawing of strokes and filled shapes in one colour. Reads only the part of SVG that our icons use, so that no
/// library is needed: paths, rectangles, circles and ellipses; stroke and fill "currentColor" or "none"; round caps and
/// joins.
class LineDrawing {
 public:
  /// Nothing for a text that is no such drawing. An unknown element, attribute or value is never ignored.
  [[nodiscard]] static std::optional<LineDrawing> read(const QByteArray& svg);

  /// Paints the drawing into a rectangle, stretched where the proportions differ.
  void paint(QPainter& painter, const QRectF& into, const QColor& ink) const;

 private:
  struct Shape {
    QPainterPath path;
    bool filled = false;
    double strokeWidth = 0;  ///< 0 for no stroke
  };

  friend class DrawingReader;

  QSizeF size_;
  std::vector<Shape> shapes_;
};

}  // namespace korvel::ui
