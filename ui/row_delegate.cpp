#include "ui/row_delegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "ui/shown_text.h"
#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

constexpr int cellInset = 8;

/// A value in one line: characters that break or hide lines become blanks.
/// Returns the text itself, unshared, in the usual case that there is nothing to replace.
QString oneLine(QString text) {
  const auto breaks = [](QChar c) {
    return c < QLatin1Char(' ') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
  };
  if (std::any_of(text.cbegin(), text.cend(), breaks)) {
    for (QChar& c : text) {
      if (breaks(c)) c = QLatin1Char(' ');
    }
  }
  return text;
}

/// Paints the marks of a text whose line begins at the left of `line`. `shown` is the text as it is painted, of which
/// an ellipsis may stand for the end: marks there are painted on it.
void paintMarks(QPainter& painter, const QRect& line, const QString& shown, const std::vector<TextMark>& marks,
                const QStyleOptionViewItem& option, const QColor& ink) {
  if (marks.empty()) return;
  QTextLayout layout(shown, option.font);
  QTextOption oneLineOnly;
  oneLineOnly.setWrapMode(QTextOption::NoWrap);
  layout.setTextOption(oneLineOnly);
  layout.beginLayout();
  const QTextLine laidOut = layout.createLine();
  layout.endLayout();
  if (!laidOut.isValid()) return;
  const Theme& theme = Theme::of(option.palette);
  const int inset = px(option.widget, 3);
  const int stroke = px(option.widget, 1);
  const auto last = shown.size();
  for (const TextMark& mark : marks) {
    const qsizetype from = std::clamp<qsizetype>(mark.from, 0, std::max<qsizetype>(0, last - 1));
    const qsizetype to = std::clamp<qsizetype>(mark.from + mark.length, from + 1, last);
    const qreal begin = laidOut.cursorToX(static_cast<int>(from));
    const qreal end = laidOut.cursorToX(static_cast<int>(to));
    // Texts that are written from the right end before they begin.
    const QRectF place(line.left() + std::min(begin, end), line.top() + inset, std::abs(end - begin),
                       line.height() - 2 * inset);
    const QColor ground = mark.isCurrent ? theme.foundCurrent : theme.found;
    if (ground.isValid()) painter.fillRect(place, ground);
    // The tint alone does not tell which is the current one, and schemes of strong contrast have no tints.
    if (mark.isCurrent) {
      const QRectF frame = place.adjusted(0, 0, 0, -stroke);
      painter.setPen(QPen(ink, stroke));
      painter.drawRect(frame);
    } else if (!ground.isValid()) {
      painter.fillRect(QRectF(place.left(), place.bottom() - stroke, place.width(), stroke), ink);
    }
  }
}

}  // namespace

int listRowHeight(const QWidget& widget) {
  return std::max(px(&widget, space::listRow), widget.fontMetrics().height() + px(&widget, 6));
}

RowDelegate::RowDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QString RowDelegate::shownText(const QString& value) {
  if (value.size() <= shownCharacters) return oneLine(visibleFormats(value));
  return oneLine(visibleFormats(value.left(shownCharacters))) + QChar(0x2026);
}

int RowDelegate::cellWidth(const QWidget* widget, qreal textWidth) {
  return static_cast<int>(std::ceil(textWidth)) + 2 * px(widget, cellInset) + 1;
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const Theme& theme = Theme::of(option.palette);
  const QRect cell = option.rect;
  const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
  const bool selected = option.state.testFlag(QStyle::State_Selected);
  if (selected) {
    painter->fillRect(cell, theme.selection);
  } else if (option.features.testFlag(QStyleOptionViewItem::Alternate)) {
    painter->fillRect(cell, theme.alternateRow);
  }
  const int inset = px(option.widget, cellInset);
  const QRect line = cell.adjusted(inset, 0, -inset, 0);
  if (line.width() > 0) {
    const QString text = shownText(index.data(Qt::DisplayRole).toString());
    if (!text.isEmpty()) {
      painter->setFont(option.font);
      const QColor& ink = selected ? theme.onSelection : theme.text;
      const QString shown = option.fontMetrics.elidedText(text, Qt::ElideRight, line.width());
      if (marks_) {
        painter->save();
        painter->setClipRect(line, Qt::IntersectClip);
        paintMarks(*painter, line, shown, marks_(index, text), option, ink);
        painter->restore();
      }
      painter->setPen(option.state.testFlag(QStyle::State_Enabled) ? ink : theme.disabled);
      painter->drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    }
  }
  if (view != nullptr && view->hasFocus() && view->currentIndex().row() == index.row()) {
    const int width = px(option.widget, 1);
    painter->fillRect(cell.left(), cell.top(), cell.width(), width, theme.accent);
    painter->fillRect(cell.left(), cell.bottom() + 1 - width, cell.width(), width, theme.accent);
  }
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QString text = shownText(index.data(Qt::DisplayRole).toString());
  const int height = option.widget != nullptr ? listRowHeight(*option.widget) : option.fontMetrics.height();
  return {cellWidth(option.widget, QFontMetricsF(option.font).horizontalAdvance(text)), height};
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
  if (event == nullptr || view == nullptr || event->type() != QEvent::ToolTip || !index.isValid() ||
      index.data(Qt::ToolTipRole).isValid()) {
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  }
  const QString whole = index.data(Qt::DisplayRole).toString();
  const QFontMetrics metrics(view->font());
  const int room = view->visualRect(index).width() - 2 * px(view, cellInset);
  const QString shown = shownText(whole);
  const bool cut = shown != whole || metrics.horizontalAdvance(shown) > room;
  if (!cut) {
    QToolTip::hideText();
    return true;
  }
  QToolTip::showText(event->globalPos(), plainToolTip(whole), view);
  return true;
}

}  // namespace korvel::ui
