#pragma once

#include <QLineF>
#include <QList>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <vector>

#include "output/pages/cell_lines.h"

namespace korvel::output::pages {

/// Collects the parts of a page and draws them together, once for each copy. Plain text of one face is drawn by one
/// call, which takes less time and makes smaller files.
class PagePainter {
 public:
  explicit PagePainter(QPainter& painter) : painter_(painter) {}

  enum class Ink { normal, faint };

  /// Lines `first` to `first + count` of a cell, the first one's top left corner at `at`.
  void cell(const CellLines& cell, std::size_t first, std::size_t count, QPointF at, qreal width, GlyphFace& face,
            Ink ink = Ink::normal);
  void fill(const QRectF& where);
  void line(QPointF from, QPointF to);
  /// A frame in strong black lines.
  void frame(const QRectF& where);
  /// Draws what has been collected.
  void paint();
  /// Begins the next page; faces that were used so far may be destroyed.
  void clear();

 private:
  struct Collected {
    GlyphFace* face = nullptr;
    Ink ink = Ink::normal;
    QList<quint32> glyphs;
    QList<QPointF> positions;
  };
  /// A line of a cell that is not drawn glyph by glyph.
  struct ShapedLine {
    QString text;
    QPointF at;
    qreal width;
    QFont font;
    qreal ascent;
    Qt::LayoutDirection direction;
    Ink ink;
  };
  Collected& collected(GlyphFace& face, Ink ink);
  void paintShaped(const ShapedLine& line);
  void paintFrames();

  QPainter& painter_;
  std::vector<QRectF> fills_;
  std::vector<QRectF> frames_;
  std::vector<ShapedLine> shaped_;
  std::vector<Collected> runs_;
  QList<QLineF> lines_;
};

}  // namespace korvel::output::pages
