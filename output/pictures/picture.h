#pragma once

#include <QColor>
#include <QFont>
#include <QLineF>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <vector>

#include "output/byte_sink.h"

class QImage;
class QPainter;

namespace korvel::output::pictures {

struct PictureBox {
  QRectF area;
  QColor fill;
};

struct PictureLine {
  QLineF line;
  QColor color;
};

/// Which point of a text its place is; the line's base in height.
enum class TextAnchor { start, middle, end };

struct PictureText {
  QPointF place;
  TextAnchor anchor = TextAnchor::start;
  QString text;
  QColor color;
  bool isBold = false;
};

/// A drawing in pixels of 96 dpi, made of what a screen, an image and an SVG file have in common. Boxes are drawn
/// first, then lines, then texts.
struct Picture {
  QSizeF size;
  QColor ground;
  QFont font;  ///< of all texts; its size is in pixels
  QString title{};
  QString description{};  ///< what it shows, for those who do not see it
  std::vector<PictureBox> boxes{};
  std::vector<PictureLine> lines{};
  std::vector<PictureText> texts{};
};

/// Draws the picture, its ground included. Needs a QGuiApplication.
void paintPicture(QPainter& painter, const Picture& picture);
/// The picture with `scale` dots a pixel. Throws Error where memory does not suffice.
[[nodiscard]] QImage imageOf(const Picture& picture, qreal scale);

/// Writes the picture as a PNG file with `scale` dots a pixel. Throws Error where memory does not suffice, and what the
/// sink throws.
void writePng(const Picture& picture, qreal scale, const ByteSink& sink);
/// Writes the picture as an SVG file: shapes and texts, nothing that a program would have to load.
void writeSvg(const Picture& picture, const ByteSink& sink);

}  // namespace korvel::output::pictures
