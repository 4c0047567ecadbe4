#pragma once

#include <QString>
#include <QStringView>
#include <string_view>
#include <vector>

#include "output/pages/glyph_face.h"

class QPaintDevice;

namespace korvel::output::pages {

/// Marks a line break of the value in shown text.
inline constexpr QChar forcedBreak{QChar::LineSeparator};

/// UTF-8 `value` as it is shown on paper: control characters, characters that turn the direction of writing and bytes
/// that are no text visible as \t, \x1B, \u202E; a line break visible as well (CR LF as an arrow, else \n or \r), and a
/// new line after it.
[[nodiscard]] QString shownOnPaper(std::string_view value);

/// A text broken into the lines of a column.
struct CellLines {
  struct Line {
    qsizetype start;
    qsizetype length;
  };

  QString text;
  std::vector<Line> lines;
  bool plain = true;         ///< the face draws it glyph by glyph; otherwise it is shaped
  bool rightToLeft = false;  ///< the direction of all of the text, and so of each of its lines

  [[nodiscard]] QStringView line(std::size_t i) const { return QStringView(text).mid(lines[i].start, lines[i].length); }
};

/// Breaks `text` into lines of at most `width`: after blanks and the separators of paths, names and lists where it can,
/// within a word where it must. Fills `cell`, whose memory is used again. Takes time and memory in proportion to the
/// text.
void breakIntoLines(QString text, qreal width, GlyphFace& face, QPaintDevice& device, CellLines& cell);

/// Widths that a column would like to have: of its longest line, and of its longest word.
struct TextExtent {
  qreal line = 0;
  qreal word = 0;
};
/// Widens `extent` to that of `text`. Only the beginning of a very long text is measured.
void measure(QStringView text, GlyphFace& face, QPaintDevice& device, TextExtent& extent);

/// Whether a line may end behind character `i`: dates, times and numbers stay in one piece.
[[nodiscard]] bool mayBreakBehind(QStringView text, qsizetype i) noexcept;

}  // namespace korvel::output::pages
