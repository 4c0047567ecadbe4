// Push buttons, tool buttons, check boxes and radio buttons, and the focus frame.
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <array>

#include "ui/buttons.h"
#include "ui/style/style_parts.h"

namespace korvel::ui {
namespace {

bool isFilled(const Canvas& canvas) {
  const auto* button = canvas.as<QStyleOptionButton>();
  const bool isDefault = button != nullptr && button->features.testFlag(QStyleOptionButton::DefaultButton);
  return isDefault || (canvas.widget != nullptr && isPrimary(*canvas.widget));
}

void drawFocusRing(const Canvas& canvas, const QRectF& rect, const QColor& color) {
  drawRounded(canvas.painter, rect, canvas.px(space::radius), {}, color, canvas.px(2));
}

bool drawPushButton(const Canvas& canvas) {
  const Theme& theme = canvas.theme;
  const QRectF rect(canvas.option.rect);
  const bool down = canvas.has(QStyle::State_Sunken) || canvas.has(QStyle::State_On);
  if (canvas.as<QStyleOptionButton>() != nullptr &&
      canvas.as<QStyleOptionButton>()->features.testFlag(QStyleOptionButton::Flat) && !down && !canvas.hovered()) {
    if (canvas.keyFocus()) drawFocusRing(canvas, rect, theme.accent);
    return true;
  }
  if (isFilled(canvas) && canvas.enabled()) {
    const QColor& ground = down ? theme.fillPressed : canvas.hovered() ? theme.fillHover : theme.fill;
    drawRounded(canvas.painter, rect, canvas.px(space::radius), ground);
    if (canvas.keyFocus()) {
      const qreal inset = canvas.px(2);
      drawRounded(canvas.painter, rect.adjusted(inset, inset, -inset, -inset), canvas.px(3), {}, theme.onFill,
                  canvas.px(1) * 1.5);
    }
    return true;
  }
  const QColor& ground = !canvas.enabled()  ? theme.surface
                         : down             ? theme.pressed
                         : canvas.hovered() ? theme.hover
                                            : theme.surface;
  drawRounded(canvas.painter, rect, canvas.px(space::radius), ground, theme.border, canvas.px(1));
  if (canvas.keyFocus()) drawFocusRing(canvas, rect, theme.accent);
  const auto* button = canvas.as<QStyleOptionButton>();
  if (button != nullptr && button->features.testFlag(QStyleOptionButton::HasMenu)) {
    const int room = canvas.px(16);
    const QRect arrow(button->rect.right() + 1 - room - canvas.px(4), button->rect.top(), room, button->rect.height());
    drawChevron(canvas.painter, QRectF(QStyle::visualRect(button->direction, button->rect, arrow)), Qt::DownArrow,
                canvas.enabled() ? theme.muted : theme.disabled, canvas.px(7));
  }
  return true;
}

/// Icon and text side by side, centred together, 6 px apart. A text that is too long is elided.
bool drawPushButtonLabel(const Canvas& canvas) {
  const auto* button = canvas.as<QStyleOptionButton>();
  if (button == nullptr || button->features.testFlag(QStyleOptionButton::HasMenu)) return false;
  const Theme& theme = canvas.theme;
  const bool filled = isFilled(canvas) && canvas.enabled();
  const QRect room = button->rect.adjusted(canvas.px(4), 0, -canvas.px(4), 0);
  const bool hasIcon = !button->icon.isNull();
  const QSize iconSize = hasIcon ? button->iconSize : QSize(0, 0);
  // Where the room does not suffice, the gap shrinks before the text is elided.
  const int fullText = button->fontMetrics.size(Qt::TextShowMnemonic, button->text).width();
  const bool tight = iconSize.width() + canvas.px(6) + fullText > room.width();
  const int gap = hasIcon && !button->text.isEmpty() ? canvas.px(tight ? 4 : 6) : 0;
  const int textRoom = room.width() - iconSize.width() - gap;
  constexpr int textFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine;
  const QString text = button->fontMetrics.elidedText(button->text, Qt::ElideRight, textRoom, Qt::TextShowMnemonic);
  const int textWidth = text.isEmpty() ? 0 : button->fontMetrics.size(Qt::TextShowMnemonic, text).width();
  const int whole = iconSize.width() + gap + textWidth;
  QRect line(room.left() + (room.width() - whole) / 2, room.top(), whole, room.height());
  if (hasIcon) {
    QRect iconRect(line.left(), line.top() + (line.height() - iconSize.height()) / 2, iconSize.width(),
                   iconSize.height());
    iconRect = QStyle::visualRect(button->direction, room, iconRect);
    const QIcon::Mode mode = canvas.enabled() ? QIcon::Normal : QIcon::Disabled;
    button->icon.paint(&canvas.painter, iconRect, Qt::AlignCenter, mode,
                       canvas.has(QStyle::State_On) ? QIcon::On : QIcon::Off);
  }
  if (!text.isEmpty()) {
    QRect textRect(line.left() + iconSize.width() + gap, line.top(), textWidth + 1, line.height());
    textRect = QStyle::visualRect(button->direction, room, textRect);
    canvas.painter.setPen(!canvas.enabled() ? theme.disabled : filled ? theme.onFill : theme.text);
    canvas.painter.drawText(textRect, textFlags, text);
  }
  return true;
}

bool drawToolPanel(const Canvas& canvas) {
  const Theme& theme = canvas.theme;
  const QRectF rect(canvas.option.rect);
  const bool on = canvas.has(QStyle::State_Sunken) || canvas.has(QStyle::State_On);
  const QColor ground = on ? theme.pressed : canvas.hovered() ? theme.hover : QColor();
  const bool bordered = qobject_cast<const IconButton*>(canvas.widget) != nullptr;
  if (bordered) {
    drawRounded(canvas.painter, rect, canvas.px(space::radius), ground.isValid() ? ground : theme.surface, theme.border,
                canvas.px(1));
  } else if (ground.isValid()) {
    drawRounded(canvas.painter, rect, canvas.px(space::radius), ground);
  }
  if (canvas.keyFocus()) drawFocusRing(canvas, rect, theme.accent);
  return true;
}

bool drawToolButton(const Canvas& canvas) {
  const auto* tool = canvas.as<QStyleOptionToolButton>();
  if (tool == nullptr) return false;
  // Buttons with a menu half, and arrow buttons, keep the toolkit's layout.
  if (tool->features.testFlag(QStyleOptionToolButton::MenuButtonPopup) ||
      tool->features.testFlag(QStyleOptionToolButton::Arrow)) {
    return false;
  }
  drawToolPanel(canvas);
  QStyleOptionToolButton label(*tool);
  const bool menu =
      tool->features.testFlag(QStyleOptionToolButton::HasMenu) && tool->toolButtonStyle != Qt::ToolButtonIconOnly;
  if (menu ||
      (tool->features.testFlag(QStyleOptionToolButton::HasMenu) && !tool->text.isEmpty() && tool->icon.isNull())) {
    const int room = canvas.px(14);
    const QRect arrow(tool->rect.right() + 1 - room, tool->rect.top(), room - canvas.px(4), tool->rect.height());
    drawChevron(canvas.painter, QRectF(QStyle::visualRect(tool->direction, tool->rect, arrow)), Qt::DownArrow,
                canvas.enabled() ? canvas.theme.muted : canvas.theme.disabled, canvas.px(7));
    label.rect = QStyle::visualRect(tool->direction, tool->rect, tool->rect.adjusted(0, 0, -room + canvas.px(4), 0));
  }
  label.state.setFlag(QStyle::State_MouseOver, false);
  canvas.style.drawControl(QStyle::CE_ToolButtonLabel, &label, &canvas.painter, canvas.widget);
  return true;
}

bool drawCheckBox(const Canvas& canvas) {
  const Theme& theme = canvas.theme;
  const int side = std::min(canvas.option.rect.width(), canvas.option.rect.height());
  QRectF box(0, 0, side, side);
  box.moveCenter(QRectF(canvas.option.rect).center());
  const qreal radius = canvas.px(3);
  const bool on = canvas.has(QStyle::State_On);
  const bool partly = canvas.has(QStyle::State_NoChange);
  if (on || partly) {
    drawRounded(canvas.painter, box, radius, canvas.enabled() ? theme.accent : theme.disabled);
    const QColor mark = canvas.enabled() ? theme.onAccent : theme.surface;
    if (on) {
      drawTick(canvas.painter, box, mark);
    } else {
      canvas.painter.fillRect(QRectF(box.left() + side * 0.25, box.center().y() - side * 0.06, side * 0.5, side * 0.12),
                              mark);
    }
  } else {
    const QColor ground = canvas.has(QStyle::State_Sunken) ? theme.pressed : theme.surface;
    drawRounded(canvas.painter, box, radius, ground, canvas.enabled() ? theme.control : theme.disabled, canvas.px(1));
  }
  return true;
}

bool drawRadio(const Canvas& canvas) {
  const Theme& theme = canvas.theme;
  const int side = std::min(canvas.option.rect.width(), canvas.option.rect.height());
  QRectF box(0, 0, side, side);
  box.moveCenter(QRectF(canvas.option.rect).center());
  const bool on = canvas.has(QStyle::State_On);
  const QColor filled = canvas.enabled() ? theme.accent : theme.disabled;
  drawRounded(canvas.painter, box, side / 2.0, on ? filled : theme.surface,
              on                 ? QColor()
              : canvas.enabled() ? theme.control
                                 : theme.disabled,
              canvas.px(1));
  if (on) {
    const qreal inset = side * 0.3;
    drawRounded(canvas.painter, box.adjusted(inset, inset, -inset, -inset), side,
                canvas.enabled() ? theme.onAccent : theme.surface);
  }
  return true;
}

bool drawFocus(const Canvas& canvas) {
  if (!canvas.has(QStyle::State_KeyboardFocusChange)) return true;
  drawRounded(canvas.painter, QRectF(canvas.option.rect), canvas.px(3), {}, canvas.theme.accent, canvas.px(1));
  return true;
}

constexpr std::array<PrimitivePart, 6> primitives{{
    {QStyle::PE_PanelButtonCommand, drawPushButton},
    {QStyle::PE_FrameDefaultButton, drawNothing},
    {QStyle::PE_PanelButtonTool, drawToolPanel},
    {QStyle::PE_IndicatorCheckBox, drawCheckBox},
    {QStyle::PE_IndicatorRadioButton, drawRadio},
    {QStyle::PE_FrameFocusRect, drawFocus},
}};
constexpr std::array<ControlPart, 2> controls{{
    {QStyle::CE_PushButtonBevel, drawPushButton},
    {QStyle::CE_PushButtonLabel, drawPushButtonLabel},
}};
constexpr std::array<ComplexPart, 1> complexes{{{QStyle::CC_ToolButton, drawToolButton}}};

}  // namespace

PartTable buttonParts() {
  return {primitives, controls, complexes};
}

}  // namespace korvel::ui
