#include "output/pages/page_painter.h"

#include <QColor>
#include <QGlyphRun>
#include <QPaintDevice>
#include <QPen>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>

namespace korvel::output::pages {

namespace {

constexpr qreal pointsPerInch = 72;
constexpr qreal lineWidthPoints = 0.35;
constexpr qreal frameWidthPoints = 1.2;
const QColor gridColour(150, 150, 150);
const QColor headerColour(236, 236, 236);
const QColor faintColour(110, 110, 110);

QColor colourOf(PagePainter::Ink ink) {
  return ink == PagePainter::Ink::normal ? QColor(Qt::black) : faintColour;
}

}  // namespace

PagePainter::Collected& PagePainter::collected(GlyphFace& face, Ink ink) {
  for (Collected& run : runs_)
    if (run.face == &face && run.ink == ink) return run;
  return runs_.emplace_back(Collected{&face, ink, {}, {}});
}

void PagePainter::cell(const CellLines& cell, std::size_t first, std::size_t count, QPointF at, qreal width,
                       GlyphFace& face, Ink ink) {
  Collected* const run = cell.plain ? &collected(face, ink) : nullptr;
  const std::size_t end = std::min(first + count, cell.lines.size());
  for (std::size_t i = first; i < end; ++i) {
    const qreal y = at.y() + face.ascent() + static_cast<qreal>(i - first) * face.lineHeight();
    if (run == nullptr) {
      const Qt::LayoutDirection direction = cell.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
      shaped_.push_back(
          {cell.line(i).toString(), {at.x(), y - face.ascent()}, width, face.font(), face.ascent(), direction, ink});
      continue;
    }
    qreal x = at.x();
    for (const QChar c : cell.line(i)) {
      // Blanks are written too, so that text copied from the page keeps its words apart.
      run->glyphs.push_back(face.glyph(c));
      run->positions.push_back({x, y});
      x += face.advance(c);
    }
  }
}

void PagePainter::fill(const QRectF& where) {
  fills_.push_back(where);
}

void PagePainter::line(QPointF from, QPointF to) {
  lines_.push_back({from, to});
}

void PagePainter::frame(const QRectF& where) {
  frames_.push_back(where);
}

void PagePainter::paintShaped(const ShapedLine& line) {
  QTextOption option;
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(line.direction);
  QTextLayout layout(line.text, line.font, painter_.device());
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine only = layout.createLine();
  if (only.isValid()) {
    only.setLineWidth(line.width);
    only.setPosition({0, line.ascent - only.ascent()});
  }
  layout.endLayout();
  painter_.setPen(colourOf(line.ink));
  layout.draw(&painter_, line.at);
}

void PagePainter::paintFrames() {
  QPen pen(Qt::black);
  pen.setWidthF(frameWidthPoints * painter_.device()->logicalDpiX() / pointsPerInch);
  pen.setJoinStyle(Qt::MiterJoin);
  painter_.setPen(pen);
  for (const QRectF& where : frames_) {
    // Within the rectangle with all of its width.
    const qreal half = pen.widthF() / 2;
    painter_.drawRect(where.adjusted(half, half, -half, -half));
  }
}

void PagePainter::paint() {
  for (const QRectF& where : fills_) painter_.fillRect(where, headerColour);
  for (const ShapedLine& line : shaped_) paintShaped(line);
  QPen pen(gridColour);
  pen.setWidthF(lineWidthPoints * painter_.device()->logicalDpiX() / pointsPerInch);
  pen.setCapStyle(Qt::FlatCap);
  painter_.setPen(pen);
  painter_.drawLines(lines_);
  if (!frames_.empty()) paintFrames();
  for (const Collected& run : runs_) {
    if (run.glyphs.isEmpty()) continue;
    QGlyphRun glyphs;
    glyphs.setRawFont(run.face->rawFont());
    glyphs.setGlyphIndexes(run.glyphs);
    glyphs.setPositions(run.positions);
    painter_.setPen(colourOf(run.ink));
    painter_.drawGlyphRun({0, 0}, glyphs);
  }
}

void PagePainter::clear() {
  fills_.clear();
  frames_.clear();
  shaped_.clear();
  lines_.clear();
  runs_.clear();
}

}  // namespace korvel::output::pages
