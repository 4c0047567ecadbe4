#include "ui/style/viewer_style.h"

#include <QApplication>
#include <QChildEvent>
#include <QPointer>
#include <QStyleFactory>
#include <QWidget>
#include <array>

#include "ui/icons/icons.h"
#include "ui/style/style_parts.h"
#include "ui/style/system_appearance.h"

namespace korvel::ui {
namespace {

/// The four tables as arrays indexed by element: painting one widget looks up several elements.
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

/// One style for all viewers of the application. They differ by palette only, which each option brings along.
QStyle& sharedStyle() {
  static QPointer<QStyle> style;
  if (style.isNull()) {
    refreshSystemAppearance();
    style = new ViewerStyle;
    style->setParent(qApp);
  }
  return *style;
}

/// Sets the style on widgets as they are added to the subtree, because Qt gives children the application's style. They
/// keep that one while the platform's own style or a high-contrast theme is in use.
class StyleScope : public QObject {
 public:
  explicit StyleScope(QWidget& root) : QObject(&root), root_(root) { take(root); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ChildAdded) {
      QObject* child = static_cast<QChildEvent*>(event)->child();
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    } else if (event->type() == QEvent::PaletteChange && watched == &root_) {
      followSystem();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void take(QWidget& widget) {
    if (!platform_ && widget.style() != &sharedStyle()) widget.setStyle(&sharedStyle());
    if (platform_ && widget.testAttribute(Qt::WA_SetStyle)) widget.setStyle(nullptr);
    widget.removeEventFilter(this);
    widget.installEventFilter(this);
    const QObjectList children = widget.children();
    for (QObject* child : children) {
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    }
  }

  /// Called after changes of colours: a high-contrast theme cannot change without one.
  void followSystem() {
    refreshSystemAppearance();
    if (systemAppearance().keepsPlatform() == platform_) return;
    platform_ = !platform_;
    take(root_);
  }

  QWidget& root_;
  bool platform_ = systemAppearance().keepsPlatform();
};

}  // namespace

ViewerStyle::ViewerStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void ViewerStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().primitive(element);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ViewerStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().control(element);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawControl(element, option, painter, widget);
}

void ViewerStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                     const QWidget* widget) const {
  if (option == nullptr || painter == nullptr) return;
  const IconPalette icons(option->palette);
  const Draw draw = Parts::all().complex(control);
  if (draw != nullptr && draw({*this, *option, *painter, widget, Theme::of(option->palette)})) return;
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QIcon ViewerStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const {
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

void ViewerStyle::drawItemAsBase(const QStyleOptionViewItem& item, QPainter& painter, const QWidget* widget) const {
  QProxyStyle::drawControl(CE_ItemViewItem, &item, &painter, widget);
}

void ViewerStyle::drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                               const QString& text, QPalette::ColorRole role) const {
  const Theme& theme = Theme::of(palette);
  QColor ink;
  if (!enabled) {
    ink = theme.disabled;
  } else if (role == QPalette::PlaceholderText) {
    ink = theme.muted;  // set by setMuted()
  } else if (role == QPalette::ButtonText) {
    ink = theme.text;  // calendars expect a bar in the highlight colour behind their buttons; ours is not
  } else {
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
    return;
  }
  const QPen before = painter->pen();
  painter->setPen(ink);
  QProxyStyle::drawItemText(painter, rect, flags, palette, true, text, QPalette::NoRole);
  painter->setPen(before);
}

void applyStyle(QWidget& root) {
  new StyleScope(root);  // owned by the root
}

}  // namespace korvel::ui
