#pragma once

#include <QPainter>
#include <QStyleOption>
#include <QWidget>
#include <span>

#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {

/// The arguments of a drawing function of the style.
struct Canvas {
  const ViewerStyle& style;
  const QStyleOption& option;
  QPainter& painter;
  const QWidget* widget;
  const Theme& theme;

  [[nodiscard]] int px(int at96) const { return ui::px(widget, at96); }
  [[nodiscard]] bool has(QStyle::StateFlag flag) const { return option.state.testFlag(flag); }
  [[nodiscard]] bool enabled() const { return has(QStyle::State_Enabled); }
  [[nodiscard]] bool hovered() const { return enabled() && has(QStyle::State_MouseOver); }
  /// Whether the focus was moved here by the keyboard. Focus after a click is not shown.
  [[nodiscard]] bool keyFocus() const { return has(QStyle::State_HasFocus) && has(QStyle::State_KeyboardFocusChange); }
  /// The option as the type that QStyle documents for the element; null where the caller passes another one.
  template <typename Option>
  [[nodiscard]] const Option* as() const {
    return qstyleoption_cast<const Option*>(&option);
  }
};

/// A drawing function. Where it returns false, Fusion draws the element.
using Draw = bool (*)(const Canvas&);

struct PrimitivePart {
  QStyle::PrimitiveElement element;
  Draw draw;
};
struct ControlPart {
  QStyle::ControlElement element;
  Draw draw;
};
struct ComplexPart {
  QStyle::ComplexControl control;
  Draw draw;
};

struct PartTable {
  std::span<const PrimitivePart> primitives;
  std::span<const ControlPart> controls;
  std::span<const ComplexPart> complexes;
};
[[nodiscard]] PartTable buttonParts();
[[nodiscard]] PartTable fieldParts();
[[nodiscard]] PartTable barParts();
[[nodiscard]] PartTable viewParts();

/// A rounded rectangle with a line of `width` device-independent pixels inside `rect`. An invalid colour leaves out the
/// background or the line.
void drawRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& ground, const QColor& line = {},
                 qreal width = 1);
/// Small filled triangle in the middle of `rect`.
void drawTriangle(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side);
/// Open arrow head in the middle of `rect`.
void drawChevron(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side);
/// Tick in a box of any size.
void drawTick(QPainter& painter, const QRectF& box, const QColor& color);
/// Dynamic property of a scroll area: its frame is 4 px away from its content.
inline constexpr const char* roomyFrame = "korvelRoomyFrame";

/// Draws nothing, for elements that are not shown in this style.
bool drawNothing(const Canvas& canvas);

/// Height above the content of a group box, for its caption or, without one, the margin.
[[nodiscard]] int groupBoxTop(const QWidget* widget, const QString& title);

}  // namespace korvel::ui
