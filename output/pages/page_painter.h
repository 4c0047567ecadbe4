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

/// Draws the parts of a page. Plain text is collected and drawn at once, which keeps both the time and the file small.
class PagePainter {
 public:
  explicit PagePainter(QPainter& painter) : painter_(painter) {}

  enum class Ink { normal, faint };

  /// Lines `first` to `first + count` of a cell, the first one's top left corner at `at`.
  void cell(const CellLines& cell, std::size_t first, std::size_t count, QPointF at, qreal width, GlyphFace& face,
            Ink ink = Ink::normal);
  /// One line of text of the page's margins.
  void text(const QRectF& where, Qt::Alignment alignment, const QFont& font, const QString& text);
  void fill(const QRectF& where);
  void line(QPointF from, QPointF to);
  /// Draws what has been collected; before the page ends.
  void finishPage();
  /// Faces that were used so far may go; between pages only.
  void forgetFaces() { runs_.clear(); }

 private:
  struct Collected {
    GlyphFace* face = nullptr;
    Ink ink = Ink::normal;
    QList<quint32> glyphs;
    QList<QPointF> positions;
  };
  Collected& collected(GlyphFace& face, Ink ink);
  void shaped(QStringView line, QPointF at, qreal width, const GlyphFace& face, Ink ink);

  QPainter& painter_;
  std::vector<Collected> runs_;
  QList<QLineF> lines_;
};

}  // namespace korvel::output::pages
