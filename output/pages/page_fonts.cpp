#include "output/pages/page_fonts.h"

#include <QString>
#include <QStringList>
#include <algorithm>

namespace korvel::output::pages {

namespace {

constexpr qreal greatestHeaderSize = 24;

}  // namespace

QFont bodyFont(qreal size) {
  QFont font;
  // Narrow columns come first: a record has eighteen columns.
  font.setFamilies({QStringLiteral("DejaVu Sans Condensed"), QStringLiteral("Segoe UI"), QStringLiteral("Arial"),
                    QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans")});
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(size);
  return font;
}

QFont headerFont(const PrintFont& font, qreal scale) {
  QFont header(QString::fromStdString(font.name));
  header.setPointSizeF(std::clamp(font.size, qreal{1}, greatestHeaderSize) * scale);
  return header;
}

}  // namespace korvel::output::pages
