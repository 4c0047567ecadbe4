#include "control/mark_header.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <utility>

#include "ui/style/theme.h"

namespace korvel::control {

namespace {

using evidence::RowReview;

constexpr int columnWidth = 26;
constexpr qreal signSize = 12;

/// A tick.
void drawReviewed(QPainter& painter, const QRectF& place, const ui::Theme& theme) {
  QPainterPath tick(place.topLeft() + QPointF(0.1 * place.width(), 0.55 * place.height()));
  tick.lineTo(place.topLeft() + QPointF(0.4 * place.width(), 0.85 * place.height()));
  tick.lineTo(place.topLeft() + QPointF(0.9 * place.width(), 0.2 * place.height()));
  painter.setPen(QPen(theme.addedLine, place.width() / 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(tick);
}

void drawLetter(QPainter& painter, const QRectF& place, const QColor& colour, QChar letter) {
  QFont font = ui::semiBold(painter.font());
  font.setPixelSize(std::max(1, static_cast<int>(place.height() * 0.8)));
  painter.setFont(font);
  painter.setPen(colour);
  painter.drawText(place, Qt::AlignCenter, letter);
}

/// A question mark in a filled circle.
void drawQuestion(QPainter& painter, const QRectF& place, const ui::Theme& theme) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.accent);
  painter.drawEllipse(place);
  drawLetter(painter, place, theme.onAccent, QLatin1Char('?'));
}

/// An exclamation mark in a triangle.
void drawChanged(QPainter& painter, const QRectF& place, const ui::Theme& theme) {
  QPainterPath triangle(QPointF(place.center().x(), place.top()));
  triangle.lineTo(place.bottomRight());
  triangle.lineTo(place.bottomLeft());
  triangle.closeSubpath();
  painter.setPen(QPen(theme.removedLine, place.width() / 10, Qt::SolidLine, Qt::SquareCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(triangle);
  drawLetter(painter, place.adjusted(0, place.height() * 0.2, 0, place.height() * 0.1), theme.removedLine,
             QLatin1Char('!'));
}

/// Three dots after the sign.
void drawComment(QPainter& painter, const QRectF& place, const ui::Theme& theme) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.muted);
  const qreal dot = place.width() / 3;
  for (int i = 0; i < 3; ++i) painter.drawEllipse(QRectF(place.left(), place.top() + i * dot * 1.5, dot, dot));
}

}  // namespace

MarkHeader::MarkHeader(QWidget* parent) : QHeaderView(Qt::Vertical, parent) {
  setSectionResizeMode(QHeaderView::Fixed);
  setSectionsClickable(true);
  setHighlightSections(false);
  hide();
}

void MarkHeader::setMarks(std::function<RowMark(int row)> marks) {
  marks_ = std::move(marks);
  viewport()->update();
}

QSize MarkHeader::sizeHint() const {
  return {ui::px(this, columnWidth), QHeaderView::sizeHint().height()};
}

void MarkHeader::paintEvent(QPaintEvent* event) {
  QHeaderView::paintEvent(event);
  const int end = length() - offset();
  if (end >= viewport()->height()) return;
  const ui::Theme& theme = ui::Theme::of(*this);
  QPainter painter(viewport());
  painter.fillRect(0, end, viewport()->width(), viewport()->height() - end, theme.surface);
}

void MarkHeader::paintSection(QPainter* painter, const QRect& place, int row) const {
  const ui::Theme& theme = ui::Theme::of(*this);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  painter->fillRect(place, row % 2 == 0 ? theme.surface : theme.alternateRow);
  painter->fillRect(QRectF(place.right(), place.top(), 1, place.height()), theme.border);
  if (marks_) {
    const RowMark mark = marks_(row);
    const qreal size = std::min<qreal>(ui::px(this, static_cast<int>(signSize)), place.height() - 2);
    QRectF sign(0, 0, size, size);
    sign.moveCenter(QRectF(place).center() - QPointF(size / 5, 0));
    switch (mark.review) {
      case RowReview::none:
        break;
      case RowReview::reviewed:
        drawReviewed(*painter, sign, theme);
        break;
      case RowReview::question:
        drawQuestion(*painter, sign, theme);
        break;
      case RowReview::changed:
        drawChanged(*painter, sign, theme);
        break;
    }
    if (mark.hasComment) {
      const qreal dots = size / 2;
      drawComment(*painter, QRectF(sign.right() + size / 6, sign.top() + size / 8, dots, dots), theme);
    }
  }
  painter->restore();
}

}  // namespace korvel::control
