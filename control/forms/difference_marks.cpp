#include "control/forms/difference_marks.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <vector>

#include "ui/style/theme.h"

namespace korvel::control {
namespace {

struct Extent {
  qreal left = 0;
  qreal right = 0;
};

/// From one end of a character to the other; in a line that mixes directions of writing, neighbours in the text need
/// not be neighbours on the screen.
Extent extentOf(const QTextLine& line, int position, qreal narrowest) {
  const qreal leading = line.cursorToX(position, QTextLine::Leading);
  const qreal trailing = line.cursorToX(position, QTextLine::Trailing);
  Extent extent{std::min(leading, trailing), std::max(leading, trailing)};
  const qreal lacking = narrowest - (extent.right - extent.left);
  if (lacking > 0) {
    extent.left = std::max(line.x(), extent.left - lacking / 2);
    extent.right = extent.left + narrowest;
  }
  return extent;
}

/// Behind the last character, or before it where writing goes to the left; within the line in any case.
Extent extentOfLineBreak(const QTextBlock& paragraph, const QTextLine& line, qreal width) {
  const QRectF text = line.naturalTextRect();
  const bool toTheLeft = paragraph.textDirection() == Qt::RightToLeft;
  const qreal left = std::clamp(toTheLeft ? text.left() - width : text.right(), line.x(),
                                std::max(line.x(), line.x() + line.width() - width));
  return {left, left + width};
}

std::vector<Extent> joined(std::vector<Extent> extents) {
  std::sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) { return a.left < b.left; });
  constexpr qreal touching = 0.5;
  std::vector<Extent> result;
  for (const Extent& each : extents) {
    if (!result.empty() && each.left <= result.back().right + touching)
      result.back().right = std::max(result.back().right, each.right);
    else
      result.push_back(each);
  }
  return result;
}

void paintExtent(QPainter& painter, const QRectF& place, const MarkLook& look) {
  painter.fillRect(place, look.tint);
  const qreal top = place.bottom() - look.thickness;
  const qreal dash = look.gap > 0 ? look.gap * 1.5 : place.width();
  const int dashes = static_cast<int>(std::ceil(place.width() / (dash + look.gap)));
  for (int i = 0; i < dashes; ++i) {
    const qreal left = place.left() + i * (dash + look.gap);
    painter.fillRect(QRectF(left, top, std::min(dash, place.right() - left), look.thickness), look.line);
  }
}

}  // namespace

MarkLook MarkLook::of(const QWidget& widget, MarkKind kind) {
  const ui::Theme& theme = ui::Theme::of(widget);
  const bool removed = kind == MarkKind::removed;
  MarkLook look;
  look.tint = removed ? theme.removed : theme.added;
  look.line = removed ? theme.removedLine : theme.addedLine;
  look.thickness = ui::px(&widget, 2);
  look.gap = removed ? ui::px(&widget, 2) : 0;
  look.narrowest = ui::px(&widget, 3);
  look.lineBreak = ui::px(&widget, 6);
  return look;
}

void paintMarks(QPainter& painter, const QTextBlock& paragraph, QPointF origin, const QRectF& visible,
                std::span<const MarkSpan> marks, const MarkLook& look) {
  const QTextLayout& layout = *paragraph.layout();
  origin += layout.position();
  const int start = paragraph.position();
  // The last position of a paragraph is its line break, which the document's last one does not have.
  const int lineBreak = paragraph.next().isValid() ? start + paragraph.length() - 1 : -1;
  for (int i = 0; i < layout.lineCount(); ++i) {
    const QTextLine line = layout.lineAt(i);
    const QRectF place = line.rect().translated(origin);
    if (!place.intersects(visible)) continue;
    const int first = start + line.textStart();
    const int last = first + line.textLength();
    std::vector<Extent> extents;
    auto mark =
        std::partition_point(marks.begin(), marks.end(), [&](const MarkSpan& each) { return each.end <= first; });
    for (; mark != marks.end() && mark->begin <= last; ++mark) {
      const int end = static_cast<int>(std::min<qsizetype>(mark->end, last)) - start;
      int at = static_cast<int>(std::max<qsizetype>(mark->begin, first)) - start;
      for (; at < end; at = layout.nextCursorPosition(at)) extents.push_back(extentOf(line, at, look.narrowest));
      if (i == layout.lineCount() - 1 && mark->begin <= lineBreak && lineBreak < mark->end)
        extents.push_back(extentOfLineBreak(paragraph, line, look.lineBreak));
    }
    for (const Extent& each : joined(std::move(extents)))
      paintExtent(painter, {origin.x() + each.left, place.top(), each.right - each.left, place.height()}, look);
  }
}

}  // namespace korvel::control
