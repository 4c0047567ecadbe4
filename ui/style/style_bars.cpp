// Menu bar, menus, tool bar, status bar and the tab bar.
#include <QMainWindow>
#include <QMenu>
#include <QTabBar>
#include <algorithm>
#include <array>

#include "ui/style/style_parts.h"

namespace korvel::ui {
namespace {

void fillLine(const Canvas& canvas, const QRect& rect) {
  canvas.painter.fillRect(rect, canvas.theme.border);
}

bool drawMenuBar(const Canvas& canvas) {
  canvas.painter.fillRect(canvas.option.rect, canvas.theme.window);
  return true;
}

bool drawMenuBarItem(const Canvas& canvas) {
  const auto* item = canvas.as<QStyleOptionMenuItem>();
  if (item == nullptr) return false;
  const Theme& theme = canvas.theme;
  canvas.painter.fillRect(item->rect, theme.window);
  const bool open = canvas.has(QStyle::State_Sunken);
  if (canvas.enabled() && (open || canvas.has(QStyle::State_Selected))) {
    const qreal inset = canvas.px(2);
    drawRounded(canvas.painter, QRectF(item->rect).adjusted(inset / 2, inset, -inset / 2, -inset),
                canvas.px(space::radius), open ? theme.pressed : theme.hover);
  }
  int flags = Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine;
  if (canvas.style.styleHint(QStyle::SH_UnderlineShortcut, item, canvas.widget, nullptr) == 0) {
    flags = Qt::AlignCenter | Qt::TextHideMnemonic | Qt::TextSingleLine;
  }
  canvas.painter.setPen(canvas.enabled() ? theme.text : theme.disabled);
  canvas.painter.drawText(item->rect, flags, item->text);
  return true;
}

bool drawMenuPanel(const Canvas& canvas) {
  canvas.painter.fillRect(canvas.option.rect, canvas.theme.surface);
  return true;
}

bool drawMenuFrame(const Canvas& canvas) {
  canvas.painter.save();
  canvas.painter.setBrush(Qt::NoBrush);
  canvas.painter.setPen(QPen(canvas.theme.border, canvas.px(1)));
  canvas.painter.drawRect(canvas.option.rect.adjusted(0, 0, -1, -1));
  canvas.painter.restore();
  return true;
}

/// The mark to the left of an item's text: a tick, the item's icon, or the icon on a tinted background where the item
/// is ticked as well.
void drawMenuMark(const Canvas& canvas, const QStyleOptionMenuItem& item, const QRect& column) {
  const bool checkable = item.checkType != QStyleOptionMenuItem::NotCheckable;
  const int side = canvas.px(space::icon);
  QRect mark(0, 0, side, side);
  mark.moveCenter(column.center());
  if (!item.icon.isNull()) {
    if (checkable && item.checked) {
      drawRounded(canvas.painter, QRectF(mark).adjusted(-3, -3, 3, 3), canvas.px(3), canvas.theme.pressed);
    }
    item.icon.paint(&canvas.painter, mark, Qt::AlignCenter, canvas.enabled() ? QIcon::Normal : QIcon::Disabled);
  } else if (checkable && item.checked) {
    drawTick(canvas.painter, QRectF(mark), canvas.enabled() ? canvas.theme.accent : canvas.theme.disabled);
  }
}

bool drawMenuItem(const Canvas& canvas) {
  const auto* item = canvas.as<QStyleOptionMenuItem>();
  if (item == nullptr) return false;
  const Theme& theme = canvas.theme;
  const QRect rect = item->rect;
  if (item->menuItemType == QStyleOptionMenuItem::Separator) {
    if (!item->text.isEmpty()) return false;
    fillLine(canvas, {rect.left() + canvas.px(8), rect.center().y(), rect.width() - canvas.px(16), canvas.px(1)});
    return true;
  }
  if (canvas.has(QStyle::State_Selected)) {
    const qreal inset = canvas.px(4);
    // The arrow keys reach disabled items too, so these are highlighted as well, in a weaker colour.
    drawRounded(canvas.painter, QRectF(rect).adjusted(inset, 1, -inset, -1), canvas.px(space::radius),
                canvas.enabled() ? theme.selection : theme.hover);
  }
  const auto placed = [&](const QRect& logical) { return QStyle::visualRect(item->direction, rect, logical); };
  drawMenuMark(canvas, *item, placed({rect.left() + canvas.px(8), rect.top(), canvas.px(24), rect.height()}));

  canvas.painter.save();
  canvas.painter.setPen(canvas.enabled() ? theme.text : theme.disabled);
  QFont font = item->font;
  if (item->menuItemType == QStyleOptionMenuItem::DefaultItem) font = semiBold(font);
  canvas.painter.setFont(font);
  const int left = rect.left() + canvas.px(36);
  const int right = rect.right() - canvas.px(24);
  const bool underline = canvas.style.styleHint(QStyle::SH_UnderlineShortcut, item, canvas.widget, nullptr) != 0;
  const int mnemonic = underline ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
  const bool mirrored = item->direction == Qt::RightToLeft;
  const int leading = mirrored ? Qt::AlignRight : Qt::AlignLeft;
  const int trailing = mirrored ? Qt::AlignLeft : Qt::AlignRight;
  const QRect line = placed({left, rect.top(), right - left, rect.height()});
  const qsizetype tab = item->text.indexOf(QLatin1Char('\t'));
  const int flags = Qt::AlignVCenter | Qt::TextSingleLine | mnemonic;
  canvas.painter.drawText(line, leading | flags, tab < 0 ? item->text : item->text.left(tab));
  if (tab >= 0) {
    canvas.painter.setPen(canvas.enabled() ? theme.muted : theme.disabled);
    canvas.painter.drawText(line, trailing | Qt::AlignVCenter | Qt::TextSingleLine, item->text.mid(tab + 1));
  }
  canvas.painter.restore();
  if (item->menuItemType == QStyleOptionMenuItem::SubMenu) {
    drawChevron(canvas.painter, QRectF(placed({right, rect.top(), canvas.px(20), rect.height()})),
                mirrored ? Qt::LeftArrow : Qt::RightArrow, canvas.enabled() ? theme.muted : theme.disabled,
                canvas.px(8));
  }
  return true;
}

bool drawToolBar(const Canvas& canvas) {
  const QRect rect = canvas.option.rect;
  canvas.painter.fillRect(rect, canvas.theme.window);
  if (canvas.has(QStyle::State_Horizontal)) {
    fillLine(canvas, {rect.left(), rect.bottom() + 1 - canvas.px(1), rect.width(), canvas.px(1)});
  }
  return true;
}

bool drawToolBarSeparator(const Canvas& canvas) {
  const QRect rect = canvas.option.rect;
  const int line = canvas.px(1);
  if (canvas.has(QStyle::State_Horizontal)) {
    const int length = std::min(rect.height(), canvas.px(20));
    fillLine(canvas, {rect.center().x(), rect.top() + (rect.height() - length) / 2, line, length});
  } else {
    const int length = std::min(rect.width(), canvas.px(20));
    fillLine(canvas, {rect.left() + (rect.width() - length) / 2, rect.center().y(), length, line});
  }
  return true;
}

bool drawStatusBar(const Canvas& canvas) {
  const QRect rect = canvas.option.rect;
  canvas.painter.fillRect(rect, canvas.theme.window);
  fillLine(canvas, {rect.left(), rect.top(), rect.width(), canvas.px(1)});
  return true;
}

bool drawPageFrame(const Canvas& canvas) {
  const auto* frame = canvas.as<QStyleOptionTabWidgetFrame>();
  if (frame == nullptr) return false;
  const Theme& theme = canvas.theme;
  const QRectF rect(frame->rect);
  const int radius = canvas.px(space::cardRadius);
  drawRounded(canvas.painter, rect, radius, theme.surface, theme.border, canvas.px(1));
  // Under the first tab the frame has no rounded corner, because its line continues that of the tab.
  if (!frame->selectedTabRect.isEmpty() && frame->selectedTabRect.left() <= frame->rect.left() + 1) {
    const QRect corner(frame->rect.left(), frame->rect.top(), radius, radius);
    canvas.painter.fillRect(corner, theme.surface);
    fillLine(canvas, {corner.left(), corner.top(), canvas.px(1), corner.height()});
  }
  return true;
}

bool isAbove(const QStyleOptionTab& tab) {
  return tab.shape == QTabBar::RoundedNorth || tab.shape == QTabBar::TriangularNorth;
}

bool drawTabShape(const Canvas& canvas) {
  const auto* tab = canvas.as<QStyleOptionTab>();
  if (tab == nullptr || !isAbove(*tab)) return false;
  const Theme& theme = canvas.theme;
  const QRectF rect(tab->rect);
  QPainter& painter = canvas.painter;
  if (canvas.has(QStyle::State_Selected)) {
    painter.save();
    painter.setClipRect(tab->rect);
    const qreal radius = canvas.px(space::cardRadius);
    drawRounded(painter, rect.adjusted(0, 0, 0, radius * 2), radius, theme.surface, theme.border, canvas.px(1));
    painter.restore();
  } else if (canvas.hovered()) {
    const qreal inset = canvas.px(3);
    drawRounded(painter, rect.adjusted(inset, inset, -inset, -inset - 1), canvas.px(space::radius), theme.hover);
  }
  return true;
}

bool drawTabLabel(const Canvas& canvas) {
  const auto* tab = canvas.as<QStyleOptionTab>();
  if (tab == nullptr || !isAbove(*tab)) return false;
  const Theme& theme = canvas.theme;
  const bool current = canvas.has(QStyle::State_Selected);
  QPainter& painter = canvas.painter;
  painter.save();
  QRect room = tab->rect.adjusted(canvas.px(12), canvas.px(1), -canvas.px(12), 0);
  if (current) {
    const int dot = canvas.px(8);
    const QRect place =
        QStyle::visualRect(tab->direction, room, {room.left(), room.center().y() - dot / 2 + 1, dot, dot});
    drawRounded(painter, QRectF(place), dot / 2.0, canvas.enabled() ? theme.accent : theme.disabled);
    const int shift = dot + canvas.px(6);
    room = QStyle::visualRect(tab->direction, room, room.adjusted(shift, 0, 0, 0));
    painter.setFont(semiBold(canvas.widget != nullptr ? canvas.widget->font() : painter.font()));
  }
  painter.setPen(!canvas.enabled() ? theme.disabled : current || canvas.hovered() ? theme.text : theme.muted);
  const int leading = tab->direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
  const int side = current ? leading : Qt::AlignHCenter;
  painter.drawText(room.adjusted(0, 0, canvas.px(2), 0),
                   side | Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, tab->text);
  painter.restore();
  if (canvas.has(QStyle::State_HasFocus)) {
    const qreal inset = canvas.px(4);
    drawRounded(painter, QRectF(tab->rect).adjusted(inset, inset, -inset, -inset), canvas.px(space::radius), {},
                theme.accent, canvas.px(1) * 1.5);
  }
  return true;
}

bool drawTabBase(const Canvas& canvas) {
  const auto* base = canvas.as<QStyleOptionTabBarBase>();
  if (base == nullptr || base->shape != QTabBar::RoundedNorth) return false;
  fillLine(canvas, {base->rect.left(), base->rect.bottom() + 1 - canvas.px(1), base->rect.width(), canvas.px(1)});
  return true;
}

constexpr std::array<PrimitivePart, 10> primitives{{
    {QStyle::PE_PanelMenuBar, drawNothing},
    {QStyle::PE_PanelMenu, drawMenuPanel},
    {QStyle::PE_FrameMenu, drawMenuFrame},
    {QStyle::PE_PanelToolBar, drawToolBar},
    {QStyle::PE_IndicatorToolBarSeparator, drawToolBarSeparator},
    {QStyle::PE_PanelStatusBar, drawStatusBar},
    {QStyle::PE_FrameStatusBarItem, drawNothing},
    {QStyle::PE_FrameTabWidget, drawPageFrame},
    {QStyle::PE_FrameTabBarBase, drawTabBase},
    {QStyle::PE_IndicatorTabTear, drawNothing},
}};
constexpr std::array<ControlPart, 7> controls{{
    {QStyle::CE_MenuBarItem, drawMenuBarItem},
    {QStyle::CE_MenuBarEmptyArea, drawMenuBar},
    {QStyle::CE_MenuItem, drawMenuItem},
    {QStyle::CE_MenuEmptyArea, drawMenuPanel},
    {QStyle::CE_ToolBar, drawToolBar},
    {QStyle::CE_TabBarTabShape, drawTabShape},
    {QStyle::CE_TabBarTabLabel, drawTabLabel},
}};

}  // namespace

PartTable barParts() {
  return {primitives, controls, {}};
}

}  // namespace korvel::ui
