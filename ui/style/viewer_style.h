#pragma once

#include <QProxyStyle>

class QStyleOptionViewItem;

namespace korvel::ui {

/// The viewer's style: Fusion, with the elements that the window uses drawn by us. It stores no colours: every element
/// is painted in the theme of its option's palette. The tables in style_*.cpp list our elements; Fusion draws all
/// others.
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

  /// Draws an item of a view by Fusion, which calls this style again for the parts of the item.
  void drawItemAsBase(const QStyleOptionViewItem& item, QPainter& painter, const QWidget* widget) const;
};

/// Gives `root` and all its present and future descendants, dialogs and menus included, the viewer's style. Nothing
/// outside the subtree changes. To be called once, at the beginning of the root's constructor; also for a dialog
/// without a parent. Changes of palette, font and screen need no further call. While the system uses a high-contrast
/// theme, widgets have the application's style.
void applyStyle(QWidget& root);

}  // namespace korvel::ui
