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

/// A drawing of strokes and filled shapes in one colour, in the manner of our icons: the part of SVG that they are
/// written in and nothing more, so that drawing them takes no library. Paths, rectangles, circles and ellipses; stroke
/// and fill are "currentColor" or "none", caps and joins round.
class LineDrawing {
 public:
  /// Nothing for a text that is no drawing of this kind. It is strict: an element, an attribute or a value that it does
  /// not know is never passed over.
  [[nodiscard]] static std::optional<LineDrawing> read(const QByteArray& svg);

  /// Paints the drawing into a rectangle of the painter's, stretched where the proportions differ.
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
