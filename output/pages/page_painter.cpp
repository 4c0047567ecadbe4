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
      shaped(cell.line(i), {at.x(), y - face.ascent()}, width, face, ink);
      continue;
    }
    qreal x = at.x();
    for (const QChar c : cell.line(i)) {
      // Blanks are written too: whoever copies text from the page gets its words apart.
      run->glyphs.push_back(face.glyph(c));
      run->positions.push_back({x, y});
      x += face.advance(c);
    }
  }
}

void PagePainter::shaped(QStringView line, QPointF at, qreal width, const GlyphFace& face, Ink ink) {
  QTextOption option;
  option.setWrapMode(QTextOption::NoWrap);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  QTextLayout layout(line.toString(), face.font(), painter_.device());
  layout.setTextOption(option);
  layout.beginLayout();
  QTextLine only = layout.createLine();
  if (only.isValid()) {
    only.setLineWidth(width);
    only.setPosition({0, face.ascent() - only.ascent()});
  }
  layout.endLayout();
  painter_.setPen(colourOf(ink));
  layout.draw(&painter_, at);
}

void PagePainter::text(const QRectF& where, Qt::Alignment alignment, const QFont& font, const QString& text) {
  painter_.setFont(font);
  painter_.setPen(colourOf(Ink::normal));
  painter_.drawText(where, static_cast<int>(alignment | Qt::TextSingleLine), text);
}

void PagePainter::fill(const QRectF& where) {
  painter_.fillRect(where, headerColour);
}

void PagePainter::line(QPointF from, QPointF to) {
  lines_.push_back({from, to});
}

void PagePainter::finishPage() {
  QPen pen(gridColour);
  pen.setWidthF(lineWidthPoints * painter_.device()->logicalDpiX() / pointsPerInch);
  pen.setCapStyle(Qt::FlatCap);
  painter_.setPen(pen);
  painter_.drawLines(lines_);
  lines_.clear();
  for (Collected& run : runs_) {
    if (run.glyphs.isEmpty()) continue;
    QGlyphRun glyphs;
    glyphs.setRawFont(run.face->rawFont());
    glyphs.setGlyphIndexes(run.glyphs);
    glyphs.setPositions(run.positions);
    painter_.setPen(colourOf(run.ink));
    painter_.drawGlyphRun({0, 0}, glyphs);
    run.glyphs.clear();
    run.positions.clear();
  }
}

}  // namespace korvel::output::pages
