#pragma once

#include <QChar>
#include <QFont>
#include <QRawFont>
#include <QStringView>
#include <vector>

class QPaintDevice;

namespace korvel::output::pages {

/// A font at one size on one device. Text of scripts that are written letter by letter from left to right is measured
/// and drawn glyph by glyph, from a table: nearly all of a trail is such text, and shaping it would take most of the
/// time. All lengths are in the device's units.
class GlyphFace {
 public:
  GlyphFace(const QFont& font, const QPaintDevice& device);

  /// Whether this face draws every character of `text` one by one.
  [[nodiscard]] bool draws(QStringView text);
  /// Both only for characters that the face draws.
  [[nodiscard]] qreal advance(QChar c) { return entry(c).advance; }
  [[nodiscard]] quint32 glyph(QChar c) { return entry(c).glyph; }
  [[nodiscard]] qreal width(QStringView text);

  [[nodiscard]] const QFont& font() const noexcept { return font_; }
  [[nodiscard]] const QRawFont& rawFont() const noexcept { return rawFont_; }
  [[nodiscard]] qreal ascent() const noexcept { return ascent_; }
  [[nodiscard]] qreal lineHeight() const noexcept { return lineHeight_; }

 private:
  struct Entry {
    float advance = -1;  ///< below zero: not looked up yet
    quint32 glyph = 0;   ///< 0: not drawn here
  };
  Entry& entry(QChar c);

  QFont font_;
  QRawFont rawFont_;
  qreal ascent_;
  qreal lineHeight_;
  std::vector<Entry> entries_;
};

}  // namespace korvel::output::pages
