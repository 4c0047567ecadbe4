#pragma once

#include <QRect>
#include <QWidget>

#include "base/twips.h"

namespace korvel::ui {

/// Converts between the control's twips and a widget's pixels through the logical resolution of its screen.
class ScreenMeasure {
 public:
  explicit ScreenMeasure(const QWidget& widget)
      : horizontalDpi_(widget.logicalDpiX()), verticalDpi_(widget.logicalDpiY()) {}
  ScreenMeasure(int horizontalDpi, int verticalDpi) : horizontalDpi_(horizontalDpi), verticalDpi_(verticalDpi) {}

  [[nodiscard]] int horizontal(Twips length) const { return toPixels(length, horizontalDpi_); }
  [[nodiscard]] int vertical(Twips length) const { return toPixels(length, verticalDpi_); }
  [[nodiscard]] Twips horizontalTwips(int pixels) const { return toTwips(pixels, horizontalDpi_); }
  [[nodiscard]] Twips verticalTwips(int pixels) const { return toTwips(pixels, verticalDpi_); }
  /// Edges are rounded, not lengths, so that adjacent rectangles stay adjacent at every resolution.
  [[nodiscard]] QRect rectangle(const Box& box) const {
    const QPoint corner(horizontal(box.left), vertical(box.top));
    const QPoint end(horizontal(box.left + box.width), vertical(box.top + box.height));
    return {corner, QSize(end.x() - corner.x(), end.y() - corner.y())};
  }

 private:
  static int toPixels(Twips length, int dpi) { return qRound(double(length.value) * dpi / twipsPerInch); }
  static Twips toTwips(int pixels, int dpi) { return {qRound(double(pixels) * twipsPerInch / dpi)}; }

  int horizontalDpi_;
  int verticalDpi_;
};

}  // namespace korvel::ui
