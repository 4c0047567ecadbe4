#include "output/pages/glyph_face.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <algorithm>
#include <array>

namespace korvel::output::pages {

namespace {

constexpr qreal pointsPerInch = 72;

struct Range {
  char16_t first;
  char16_t last;
};
/// Letters whose shape does not depend on their neighbours.
constexpr std::array plainRanges = {Range{0x20, 0x7E},     Range{0xA0, 0xAC},     Range{0xAE, 0x24F},
                                    Range{0x370, 0x3FF},   Range{0x400, 0x482},   Range{0x48A, 0x52F},
                                    Range{0x2010, 0x2027}, Range{0x2030, 0x205E}, Range{0x20A0, 0x20BF},
                                    Range{0x2100, 0x214F}, Range{0x2190, 0x21FF}};
constexpr std::size_t tableSize = 0x2200;

constexpr bool isPlain(char16_t c) noexcept {
  return std::any_of(plainRanges.begin(), plainRanges.end(),
                     [c](const Range& range) { return c >= range.first && c <= range.last; });
}

}  // namespace

GlyphFace::GlyphFace(const QFont& font, const QPaintDevice& device)
    : font_(font), rawFont_(QRawFont::fromFont(font)), entries_(tableSize) {
  rawFont_.setPixelSize(font.pointSizeF() * device.logicalDpiY() / pointsPerInch);
  const QFontMetricsF metrics(font, &device);
  ascent_ = metrics.ascent();
  lineHeight_ = metrics.height();
}

GlyphFace::Entry& GlyphFace::entry(QChar c) {
  Entry& entry = entries_[c.unicode()];
  if (entry.advance < 0) {
    entry.advance = 0;
    if (isPlain(c.unicode())) {
      const QList<quint32> glyphs = rawFont_.glyphIndexesForString(QString(c));
      if (!glyphs.isEmpty() && glyphs.front() != 0) {
        entry.glyph = glyphs.front();
        const QList<QPointF> advances = rawFont_.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
        entry.advance = static_cast<float>(advances.front().x());
      }
    }
  }
  return entry;
}

bool GlyphFace::draws(QStringView text) {
  return std::all_of(text.begin(), text.end(), [this](QChar c) {
    return c == QChar(QChar::LineSeparator) || (c.unicode() < tableSize && entry(c).glyph != 0);
  });
}

qreal GlyphFace::width(QStringView text) {
  qreal width = 0;
  for (const QChar c : text) width += advance(c);
  return width;
}

}  // namespace korvel::output::pages
