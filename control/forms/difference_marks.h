#pragma once

#include <QColor>
#include <QRectF>
#include <QtGlobal>
#include <span>

class QPainter;
class QTextBlock;
class QWidget;

namespace korvel::control {

/// Characters begin..end of a text, without the last.
struct MarkSpan {
  qsizetype begin = 0;
  qsizetype end = 0;
  friend bool operator==(const MarkSpan&, const MarkSpan&) = default;
};

/// Removed characters have a broken line under them, added ones a whole line. No line goes through characters: it would
/// hide a minus sign.
enum class MarkKind { removed, added };

/// How marks are painted: a tint behind the text, and a line under it.
struct MarkLook {
  QColor tint;
  QColor line;
  qreal thickness = 2;
  /// The gaps of a broken line; 0 for a whole one.
  qreal gap = 0;
  /// What takes no room, or less, is marked in this width.
  qreal narrowest = 3;
  /// The mark of a line break.
  qreal lineBreak = 6;

  [[nodiscard]] static MarkLook of(const QWidget& widget, MarkKind kind);
};

/// Paints the marks of a paragraph whose upper left corner is at `origin`, as far as its lines are in `visible`; its
/// text is painted afterwards. `marks` are positions in the document, in order.
void paintMarks(QPainter& painter, const QTextBlock& paragraph, QPointF origin, const QRectF& visible,
                std::span<const MarkSpan> marks, const MarkLook& look);

}  // namespace korvel::control
