#pragma once

#include <QPainter>
#include <QStyleOption>
#include <QWidget>
#include <span>

#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {

/// What a drawing function of the style gets.
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
  /// Focus that came with the keyboard: it is shown; focus that came with a click is not.
  [[nodiscard]] bool keyFocus() const { return has(QStyle::State_HasFocus) && has(QStyle::State_KeyboardFocusChange); }
  /// The option as its own type; the style's contract says which it is, null if a caller breaks it.
  template <typename Option>
  [[nodiscard]] const Option* as() const {
    return qstyleoption_cast<const Option*>(&option);
  }
};

/// A drawing function; false leaves the element to Fusion.
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

/// A rounded rectangle with a line of `width` device-independent pixels inside of `rect`. Invalid colours leave that
/// out.
void drawRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& ground, const QColor& line = {},
                 qreal width = 1);
/// Small filled triangle in the middle of `rect`.
void drawTriangle(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side);
/// Open arrow head in the middle of `rect`.
void drawChevron(QPainter& painter, const QRectF& rect, Qt::ArrowType direction, const QColor& color, qreal side);
/// Tick in a box of any size.
void drawTick(QPainter& painter, const QRectF& box, const QColor& color);
/// Name of the property of a scroll area whose frame keeps 4 px from its content.
inline constexpr const char* roomyFrame = "korvelRoomyFrame";

/// Does nothing: for elements that the drawing does without.
bool drawNothing(const Canvas& canvas);

/// Room above the content of a group box: its caption, or the inset alone.
[[nodiscard]] int groupBoxTop(const QWidget* widget, const QString& title);

}  // namespace korvel::ui
