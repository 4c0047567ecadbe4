#include "control/look/look_style.h"

#include <QStyleFactory>
#include <array>

#include "control/look/icons.h"
#include "control/look/style_parts.h"

namespace korvel::look {
namespace {

/// The four tables, spread out for look-up by element: painting asks several times a widget.
class Parts {
 public:
  static const Parts& all() {
    static const Parts parts;
    return parts;
  }

  [[nodiscard]] Draw primitive(QStyle::PrimitiveElement element) const { return at(primitives_, element); }
  [[nodiscard]] Draw control(QStyle::ControlElement element) const { return at(controls_, element); }
  [[nodiscard]] Draw complex(QStyle::ComplexControl control) const { return at(complexes_, control); }

 private:
  using Row = std::array<Draw, 64>;

  Parts() {
    for (const PartTable& table : {buttonParts(), fieldParts(), barParts(), viewParts()}) {
      for (const auto& part : table.primitives) primitives_.at(static_cast<std::size_t>(part.element)) = part.draw;
      for (const auto& part : table.controls) controls_.at(static_cast<std::size_t>(part.element)) = part.draw;
      for (const auto& part : table.complexes) complexes_.at(static_cast<std::size_t>(part.control)) = part.draw;
    }
  }

  template <typename Element>
  static Draw at(const Row& row, Element element) {
    const auto index = static_cast<std::size_t>(element);
    return index < row.size() ? row.at(index) : nullptr;
  }

  Row primitives_{};
  Row controls_{};
  Row complexes_{};
};

}  // namespace

LookStyle::LookStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void LookStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().primitive(element);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void LookStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().control(element);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawControl(element, option, painter, widget);
}

void LookStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                   const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().complex(control);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QIcon LookStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const {
  switch (which) {
    case SP_ToolBarHorizontalExtensionButton:
    case SP_ToolBarVerticalExtensionButton:
      return icon(IconName::More);
    case SP_LineEditClearButton:
      return icon(IconName::ClearDate);
    default:
      return QProxyStyle::standardIcon(which, option, widget);
  }
}

void LookStyle::drawItemAsBase(const QStyleOptionViewItem& item, QPainter& painter, const QWidget* widget) const {
  QProxyStyle::drawControl(CE_ItemViewItem, &item, &painter, widget);
}

void LookStyle::drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                             const QString& text, QPalette::ColorRole role) const {
  const Theme& theme = Theme::of(palette);
  QColor ink;
  if (!enabled) {
    ink = theme.disabled;
  } else if (role == QPalette::PlaceholderText) {
    ink = theme.muted;  // how labels in grey are marked
  } else if (role == QPalette::ButtonText) {
    ink = theme.text;  // calendars colour their buttons for a bar in the highlight colour, which ours is not
  } else {
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
    return;
  }
  const QPen before = painter->pen();
  painter->setPen(ink);
  QProxyStyle::drawItemText(painter, rect, flags, palette, true, text, QPalette::NoRole);
  painter->setPen(before);
}

}  // namespace korvel::look
