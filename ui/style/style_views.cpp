// Lists and trees: headers, rows, branches.
#include <QAbstractItemView>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>
#include <array>

#include "ui/result_table.h"
#include "ui/style/style_parts.h"

namespace korvel::ui {
namespace {

bool drawHeaderGround(const Canvas& canvas) {
  const Theme& theme = canvas.theme;
  const QRect rect = canvas.option.rect;
  const int line = canvas.px(1);
  canvas.painter.fillRect(rect, theme.header);
  canvas.painter.fillRect(rect.left(), rect.bottom() + 1 - line, rect.width(), line, theme.border);
  return true;
}

bool drawHeaderSection(const Canvas& canvas) {
  const auto* section = canvas.as<QStyleOptionHeader>();
  if (section == nullptr || section->orientation != Qt::Horizontal) return false;
  const Theme& theme = canvas.theme;
  const QRect rect = section->rect;
  const int line = canvas.px(1);
  drawHeaderGround(canvas);
  const auto* header = qobject_cast<const QHeaderView*>(canvas.widget);
  const bool clickable = header == nullptr || header->sectionsClickable();
  const QColor tint = canvas.has(QStyle::State_Sunken) ? theme.pressed : theme.hover;
  if (clickable && canvas.enabled() && (canvas.has(QStyle::State_Sunken) || canvas.hovered())) {
    canvas.painter.fillRect(rect.adjusted(0, 0, 0, -line), mixed(theme.header, tint, 0.8));
  }
  const int edge = section->direction == Qt::RightToLeft ? rect.left() : rect.right() + 1 - line;
  canvas.painter.fillRect(edge, rect.top(), line, rect.height(), theme.border);
  return true;
}

/// The caption, directly followed by the sort arrow. A caption that is too long is elided, the arrow is always shown.
bool drawHeader(const Canvas& canvas) {
  const auto* section = canvas.as<QStyleOptionHeader>();
  if (section == nullptr || section->orientation != Qt::Horizontal) return false;
  const Theme& theme = canvas.theme;
  QPainter& painter = canvas.painter;
  painter.save();
  painter.setClipRect(section->rect, Qt::IntersectClip);
  drawHeaderSection(canvas);
  painter.setFont(semiBold(canvas.widget != nullptr ? canvas.widget->font() : painter.font()));
  const QFontMetrics metrics = painter.fontMetrics();
  const bool sorted = section->sortIndicator != QStyleOptionHeader::None;
  const int arrow = sorted ? canvas.px(8) : 0;
  const int gap = sorted ? canvas.px(5) : 0;
  const auto* list = qobject_cast<const ResultHeader*>(canvas.widget);
  const int sign = list == nullptr ? 0 : list->signRoom(section->section);
  const QRect room = section->rect.adjusted(canvas.px(8), 0, -canvas.px(7) - sign, -canvas.px(1));
  const QString text = metrics.elidedText(section->text, Qt::ElideRight, std::max(0, room.width() - arrow - gap));
  const int width = std::min(metrics.horizontalAdvance(text), std::max(0, room.width() - arrow - gap));
  int shift = 0;
  const int spare = room.width() - width - arrow - gap;
  if (section->textAlignment.testFlag(Qt::AlignHCenter)) shift = spare / 2;
  if (section->textAlignment.testFlag(Qt::AlignRight)) shift = spare;
  const auto placed = [&](const QRect& logical) { return QStyle::visualRect(section->direction, room, logical); };
  painter.setPen(canvas.enabled() ? theme.text : theme.disabled);
  painter.drawText(placed({room.left() + shift, room.top(), width + 1, room.height()}),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
  if (sorted) {
    // The toolkit calls the ascending arrow "down". Here it points up, as in other programs.
    const bool ascending = section->sortIndicator == QStyleOptionHeader::SortDown;
    drawTriangle(painter, QRectF(placed({room.left() + shift + width + gap, room.top(), arrow, room.height()})),
                 ascending ? Qt::UpArrow : Qt::DownArrow, canvas.enabled() ? theme.accent : theme.disabled, arrow);
  }
  painter.restore();
  return true;
}

void fillRow(const Canvas& canvas, const QStyleOptionViewItem& item) {
  const Theme& theme = canvas.theme;
  if (canvas.has(QStyle::State_Selected) && item.showDecorationSelected) {
    canvas.painter.fillRect(item.rect, theme.selection);
  } else if (item.features.testFlag(QStyleOptionViewItem::Alternate)) {
    canvas.painter.fillRect(item.rect, theme.alternateRow);
  }
}

bool drawRowGround(const Canvas& canvas) {
  const auto* item = canvas.as<QStyleOptionViewItem>();
  if (item == nullptr) return false;
  if (qobject_cast<const ResultTable*>(canvas.widget) == nullptr)
    fillRow(canvas, *item);  // its delegate fills the cells
  return true;
}

bool drawItemGround(const Canvas& canvas) {
  const auto* item = canvas.as<QStyleOptionViewItem>();
  if (item == nullptr) return false;
  if (item->backgroundBrush.style() != Qt::NoBrush) canvas.painter.fillRect(item->rect, item->backgroundBrush);
  const auto* view = qobject_cast<const QAbstractItemView*>(canvas.widget);
  if (canvas.has(QStyle::State_Selected) && canvas.widget != nullptr && canvas.widget->inherits("QCalendarView")) {
    // The chosen day of a calendar, which draws the number in the colour for highlighted text.
    drawRounded(canvas.painter, QRectF(item->rect).adjusted(1, 1, -1, -1), canvas.px(space::radius),
                item->palette.color(canvas.enabled() ? QPalette::Active : QPalette::Disabled, QPalette::Highlight));
  } else if (canvas.has(QStyle::State_Selected)) {
    canvas.painter.fillRect(item->rect, canvas.theme.selection);
  } else if (view != nullptr && canvas.hovered() && view->selectionMode() != QAbstractItemView::NoSelection) {
    canvas.painter.fillRect(item->rect, canvas.theme.hover);
  }
  return true;
}

/// The toolkit's item in the text colours of the theme: selected texts keep their colour.
bool drawItem(const Canvas& canvas) {
  const auto* item = canvas.as<QStyleOptionViewItem>();
  if (item == nullptr) return false;
  QStyleOptionViewItem ours(*item);
  const bool own = item->index.isValid() && item->index.data(Qt::ForegroundRole).isValid();
  if (!own) {
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
      ours.palette.setColor(group, QPalette::Text, canvas.theme.text);
      ours.palette.setColor(group, QPalette::HighlightedText, canvas.theme.text);
    }
    ours.palette.setColor(QPalette::Disabled, QPalette::Text, canvas.theme.disabled);
    ours.palette.setColor(QPalette::Disabled, QPalette::HighlightedText, canvas.theme.disabled);
  } else {
    // The platform's highlighted text is made for its highlight colour, not for our pale one.
    for (const auto group : {QPalette::Active, QPalette::Inactive})
      ours.palette.setColor(group, QPalette::HighlightedText, canvas.theme.onSelection);
  }
  canvas.style.drawItemAsBase(ours, canvas.painter, canvas.widget);
  return true;
}

bool drawBranch(const Canvas& canvas) {
  if (!canvas.has(QStyle::State_Children)) return true;
  const bool open = canvas.has(QStyle::State_Open);
  const Qt::ArrowType shut = canvas.option.direction == Qt::RightToLeft ? Qt::LeftArrow : Qt::RightArrow;
  drawTriangle(canvas.painter, QRectF(canvas.option.rect), open ? Qt::DownArrow : shut,
               canvas.enabled() ? canvas.theme.muted : canvas.theme.disabled, canvas.px(7));
  return true;
}

constexpr std::array<PrimitivePart, 3> primitives{{
    {QStyle::PE_PanelItemViewRow, drawRowGround},
    {QStyle::PE_PanelItemViewItem, drawItemGround},
    {QStyle::PE_IndicatorBranch, drawBranch},
}};
constexpr std::array<ControlPart, 4> controls{{
    {QStyle::CE_Header, drawHeader},
    {QStyle::CE_HeaderSection, drawHeaderSection},
    {QStyle::CE_HeaderEmptyArea, drawHeaderGround},
    {QStyle::CE_ItemViewItem, drawItem},
}};

}  // namespace

PartTable viewParts() {
  return {primitives, controls, {}};
}

}  // namespace korvel::ui
