#pragma once

#include <QProxyStyle>

class QStyleOptionViewItem;

namespace korvel::ui {

/// The viewer's style: Fusion with our own drawing of the elements that the window is made of. It keeps no colours:
/// every element is painted in the theme of the palette that comes with its option.
/// The elements are tables in style_*.cpp; what is in none of them is Fusion's.
class ViewerStyle : public QProxyStyle {
  Q_OBJECT

 public:
  ViewerStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                    const QString& text, QPalette::ColorRole role) const override;

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override;
  QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;

  QIcon standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const override;

  using QProxyStyle::polish;
  void polish(QWidget* widget) override;

  /// An item of a view as Fusion draws it, which asks us again for its parts.
  void drawItemAsBase(const QStyleOptionViewItem& item, QPainter& painter, const QWidget* widget) const;
};

/// Gives `root` and everything below it, now and later (dialogs and menus that are its children included), the
/// viewer's style. Nothing outside of the subtree changes. Call it once, first thing in the constructor of the root;
/// also for a dialog without a parent. It follows changes of palette, font and screen by itself, and uses the
/// application's style while the system has a scheme of strong contrast on.
void applyStyle(QWidget& root);

}  // namespace korvel::ui
