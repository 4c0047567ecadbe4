#pragma once

#include <QColor>
#include <QImage>
#include <QWidget>

#include "ui/style/palettes.h"
#include "ui/style/theme.h"

namespace korvel::ui {

inline void PrintTo(const QColor& color, std::ostream* out) {
  *out << color.name(QColor::HexArgb).toStdString();
}

/// Both schemes, for tests that hold in either.
struct SchemeCase {
  const char* name;
  QPalette (*palette)(const QColor&);
};
inline constexpr SchemeCase schemes[] = {{"light", lightPalette}, {"dark", darkPalette}};

inline QImage painted(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// Number of pixels of exactly this colour.
inline int count(const QImage& image, const QColor& color, QRect within = {}) {
  if (within.isNull()) within = image.rect();
  within &= image.rect();
  int found = 0;
  for (int y = within.top(); y <= within.bottom(); ++y) {
    for (int x = within.left(); x <= within.right(); ++x) {
      if (image.pixelColor(x, y).rgb() == color.rgb()) ++found;
    }
  }
  return found;
}

}  // namespace korvel::ui
