#include "ui/result_header.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "ui/icons/icons.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

constexpr int signWidth = 16;       ///< of the place that takes clicks
constexpr int signFromEdge = 5;     ///< the handle for resizing keeps its place
constexpr int captionEnd = 7;       ///< between a caption and the edge where there is no sign
constexpr int leastSection = 56;    ///< narrower ones have no sign
constexpr int roomySection = 80;    ///< from this width on captions that are cut anyway make room
constexpr int arrowWidth = 13;      ///< of the sort arrow with the gap before it
constexpr int captionMargins = 16;  ///< of a caption in its section

/// A funnel in the middle of `place`; filled where the column is filtered.
void paintSign(QPainter& painter, const QRectF& place, qreal side, const QColor& ink, bool filled) {
  const QPointF middle = place.center();
  const qreal half = side / 2;
  QPainterPath funnel;
  funnel.moveTo(middle.x() - half, middle.y() - half * 0.8);
  funnel.lineTo(middle.x() + half, middle.y() - half * 0.8);
  funnel.lineTo(middle.x() + half * 0.22, middle.y() + half * 0.15);
  funnel.lineTo(middle.x() + half * 0.22, middle.y() + half * 0.95);
  funnel.lineTo(middle.x() - half * 0.22, middle.y() + half * 0.7);
  funnel.lineTo(middle.x() - half * 0.22, middle.y() + half * 0.15);
  funnel.closeSubpath();
  painter.setRenderHint(QPainter::Antialiasing);
  QPen pen(ink, side / 9.0);
  pen.setJoinStyle(Qt::RoundJoin);
  painter.setPen(pen);
  painter.setBrush(filled ? QBrush(ink) : QBrush());
  painter.drawPath(funnel);
}

}  // namespace

ResultHeader::ResultHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(true);
  setSectionsClickable(true);
  setHighlightSections(false);
  setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  setTextElideMode(Qt::ElideRight);
  setSortIndicatorShown(false);
  setStretchLastSection(false);
  setMinimumSectionSize(px(this, 24));
  connect(this, &QHeaderView::sectionResized, this, [this](int column) {
    if (held_) resized_ = column;
  });
  connect(this, &QHeaderView::sectionMoved, this, [this] { moved_ = moved_ || held_; });
}

void ResultHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const {
  QHeaderView::initStyleOptionForIndex(option, logicalIndex);
  if (option == nullptr) return;
  option->text = visibleFormats(option->text);
  // Our style leaves the sign its room by itself.
  if (qobject_cast<const ViewerStyle*>(style()) != nullptr) return;
  if (const int room = signRoom(logicalIndex); room > 0)
    option->text = option->fontMetrics.elidedText(
        option->text, Qt::ElideRight, std::max(0, sectionSize(logicalIndex) - room - px(this, captionMargins)));
  if (option->sortIndicator == QStyleOptionHeader::None) return;
  // Styles disagree on the direction of the ascending arrow, so other styles draw our icon instead.
  option->sortIndicator = QStyleOptionHeader::None;
  const bool ascending = sortIndicatorOrder() == Qt::AscendingOrder;
  option->icon = icon(ascending ? IconName::SortAscending : IconName::SortDescending);
}

void ResultHeader::showSort(int column, Qt::SortOrder order) {
  setSortIndicatorShown(column >= 0);
  setSortIndicator(column, order);
}

void ResultHeader::setFilterSigns(bool shown, const QString& toolTip) {
  signs_ = shown;
  signToolTip_ = toolTip;
  viewport()->setMouseTracking(true);
  viewport()->update();
}

void ResultHeader::setFilteredColumns(const std::vector<int>& columns) {
  filtered_.assign(static_cast<std::size_t>(std::max(0, count())), false);
  for (const int column : columns)
    if (column >= 0 && column < count()) filtered_[static_cast<std::size_t>(column)] = true;
  viewport()->update();
}

void ResultHeader::setKeyColumn(int column) {
  if (column == keyColumn_) return;
  keyColumn_ = column;
  if (signs_) viewport()->update();
}

bool ResultHeader::isFiltered(int column) const {
  return column >= 0 && static_cast<std::size_t>(column) < filtered_.size() &&
         filtered_[static_cast<std::size_t>(column)];
}

QRect ResultHeader::signPlace(int column) const {
  if (!signs_ || column < 0 || column >= count() || isSectionHidden(column) ||
      sectionSize(column) < px(this, leastSection))
    return {};
  const int left = sectionViewportPosition(column);
  const int width = px(this, signWidth);
  const int fromEdge = px(this, signFromEdge);
  const bool mirrored = layoutDirection() == Qt::RightToLeft;
  return {mirrored ? left + fromEdge : left + sectionSize(column) - fromEdge - width, 0, width, viewport()->height()};
}

int ResultHeader::signRoom(int column) const {
  if (signPlace(column).isEmpty()) return 0;
  // The drawing in its place has some air around it.
  const int room = px(this, signFromEdge + signWidth - captionEnd - 2);
  if (isFiltered(column) || column == hovered_ || column == pressed_ || column == keyColumn_) return room;
  const QString caption =
      model() == nullptr ? QString() : visibleFormats(model()->headerData(column, orientation()).toString());
  const int arrow = isSortIndicatorShown() && sortIndicatorSection() == column ? px(this, arrowWidth) : 0;
  const int needed = QFontMetrics(semiBold(font())).horizontalAdvance(caption) + px(this, captionMargins) + arrow;
  const int whole = sectionSize(column);
  if (needed + room <= whole) return room;
  return needed > whole && whole >= px(this, roomySection) ? room : 0;
}

int ResultHeader::signAt(const QPoint& place) const {
  const int column = logicalIndexAt(place);
  return column >= 0 && signPlace(column).contains(place) ? column : -1;
}

void ResultHeader::setHovered(int column) {
  if (column == hovered_) return;
  hovered_ = column;
  if (signs_) viewport()->update();
}

void ResultHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
  painter->save();
  QHeaderView::paintSection(painter, rect, logicalIndex);
  painter->restore();
  if (signRoom(logicalIndex) == 0) return;
  const Theme& theme = Theme::of(*this);
  const bool filtered = isFiltered(logicalIndex);
  constexpr int side = 9;
  painter->save();
  const QColor ink = !isEnabled() ? theme.disabled : filtered ? theme.accent : theme.muted;
  paintSign(*painter, QRectF(signPlace(logicalIndex)), px(this, side), ink, filtered);
  painter->restore();
}

bool ResultHeader::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) setHovered(-1);
  if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverMove)
    setHovered(logicalIndexAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    if (signAt(help->pos()) >= 0 && !signToolTip_.isEmpty()) {
      QToolTip::showText(help->globalPos(), signToolTip_, this);
      return true;
    }
  }
  return QHeaderView::viewportEvent(event);
}

void ResultHeader::mousePressEvent(QMouseEvent* event) {
  pressed_ = event->button() == Qt::LeftButton ? signAt(event->position().toPoint()) : -1;
  if (pressed_ >= 0) return;
  held_ = event->button() == Qt::LeftButton;
  resized_ = -1;
  moved_ = false;
  QHeaderView::mousePressEvent(event);
}

void ResultHeader::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) setHovered(logicalIndexAt(event->position().toPoint()));
  if (pressed_ < 0) QHeaderView::mouseMoveEvent(event);
}

void ResultHeader::mouseReleaseEvent(QMouseEvent* event) {
  if (pressed_ < 0) {
    QHeaderView::mouseReleaseEvent(event);
    if (!std::exchange(held_, false)) return;
    if (resized_ >= 0) Q_EMIT widthChosen(resized_);
    if (moved_) Q_EMIT orderChosen();
    return;
  }
  const int column = std::exchange(pressed_, -1);
  // As with any button: not where it was left meanwhile.
  if (signAt(event->position().toPoint()) == column) Q_EMIT filterRequested(column);
}

void ResultHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  // Two clicks on the sign are no double click on the section.
  if (event->button() == Qt::LeftButton && signAt(event->position().toPoint()) >= 0)
    mousePressEvent(event);
  else
    QHeaderView::mouseDoubleClickEvent(event);
}

}  // namespace korvel::ui
