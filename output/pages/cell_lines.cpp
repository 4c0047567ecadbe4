#include "output/pages/cell_lines.h"

#include <QFontMetricsF>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <string>
#include <utility>

#include "output/terminal_text.h"

namespace korvel::output::pages {

namespace {

constexpr std::string_view windowsLineBreak = "\u21B5";

bool isPlain(std::string_view value) noexcept {
  return std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// Shaping takes many bytes a character, so long texts are shaped in parts.
constexpr qsizetype shapedAtOnce = 2000;
constexpr qsizetype measuredCharacters = 2000;
constexpr QStringView separators = u"-/\\.,;:_|=&?)]}#@";

void breakPlain(CellLines& cell, qreal width, GlyphFace& face) {
  const QString& text = cell.text;
  qsizetype start = 0;
  qsizetype canBreakAt = 0;
  qsizetype canSplitAt = 0;
  qreal x = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == forcedBreak) {
      cell.lines.push_back({start, i - start});
      start = canBreakAt = i + 1;
      x = 0;
      continue;
    }
    const qreal advance = face.advance(c);
    if (x + advance > width && i > start) {
      if (c == u' ') {  // a blank may hang over the edge
        cell.lines.push_back({start, i - start});
        start = canBreakAt = i + 1;
        x = 0;
        continue;
      }
      // A number that fits no line is split at a separator of its own before it is broken anywhere.
      const qsizetype end = canBreakAt > start ? canBreakAt : canSplitAt > start ? canSplitAt : i;
      cell.lines.push_back({start, end - start});
      start = canBreakAt = end;
      x = face.width(QStringView(text).mid(start, i - start));
    }
    x += advance;
    if (mayBreakBehind(text, i)) canBreakAt = i + 1;
    if (separators.contains(c)) canSplitAt = i + 1;
  }
  cell.lines.push_back({start, text.size() - start});
}

/// Where the part of a text that begins at `start` ends: at a forced break, or where it is long enough.
qsizetype endOfPart(const QString& text, qsizetype start) {
  const qsizetype limit = std::min(start + shapedAtOnce, text.size());
  const qsizetype forced = text.indexOf(forcedBreak, start);
  if (forced >= 0 && forced < limit) return forced;
  if (limit == text.size()) return limit;
  qsizetype end = limit;
  while (end > limit - 100 && !text[end - 1].isSpace()) --end;
  if (!text[end - 1].isSpace()) end = limit;
  // Never within a surrogate pair or a combined character.
  while (end > start + 1 && (text[end].isLowSurrogate() || text[end].isMark() || text[end].unicode() == 0x200D ||
                             text[end - 1].unicode() == 0x200D))
    --end;
  return end;
}

void breakShaped(CellLines& cell, qreal width, const QFont& font, QPaintDevice& device) {
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setTextDirection(cell.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  for (qsizetype start = 0; start <= cell.text.size();) {
    const qsizetype end = endOfPart(cell.text, start);
    if (start == end) cell.lines.push_back({start, 0});
    QTextLayout layout(cell.text.mid(start, end - start), font, &device);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      if (line.textLength() > 0) cell.lines.push_back({start + line.textStart(), line.textLength()});
    }
    layout.endLayout();
    const bool forced = end < cell.text.size() && cell.text[end] == forcedBreak;
    if (end == cell.text.size()) break;
    start = forced ? end + 1 : end;
  }
}

}  // namespace

QString shownOnPaper(std::string_view value) {
  if (isPlain(value)) return QString::fromLatin1(value.data(), static_cast<qsizetype>(value.size()));
  QString shown;
  std::string visible;
  while (!value.empty()) {
    const std::size_t text = std::min(value.find_first_of("\r\n"), value.size());
    const bool pair = value.substr(text).starts_with("\r\n");
    const std::size_t whole = std::min(text + (pair ? 2U : 1U), value.size());
    visible.clear();
    appendTerminalText(value.substr(0, pair ? text : whole), visible);
    if (pair) visible += windowsLineBreak;
    shown += QString::fromUtf8(visible.data(), static_cast<qsizetype>(visible.size()));
    value.remove_prefix(whole);
    if (!value.empty()) shown += forcedBreak;
  }
  return shown;
}

bool mayBreakBehind(QStringView text, qsizetype i) noexcept {
  const QChar c = text[i];
  if (c == u' ') return true;
  if (!separators.contains(c)) return false;
  const auto isDigit = [&](qsizetype at) {
    return at >= 0 && at < text.size() && text[at] >= u'0' && text[at] <= u'9';
  };
  return !(isDigit(i - 1) && isDigit(i + 1)) && !(i + 1 < text.size() && separators.contains(text[i + 1]));
}

void breakIntoLines(QString text, qreal width, GlyphFace& face, QPaintDevice& device, CellLines& cell) {
  cell.text = std::move(text);
  cell.lines.clear();
  cell.plain = face.draws(cell.text);
  cell.rightToLeft = !cell.plain && cell.text.isRightToLeft();
  if (cell.plain)
    breakPlain(cell, width, face);
  else
    breakShaped(cell, width, face.font(), device);
}

void measure(QStringView text, GlyphFace& face, QPaintDevice& device, TextExtent& extent) {
  text = text.left(measuredCharacters);
  if (!face.draws(text)) {
    // A generous guess for scripts that are shaped; their lines break nearly anywhere.
    const qreal width = QFontMetricsF(face.font(), &device).horizontalAdvance(text.left(100).toString());
    extent.line = std::max(extent.line, width);
    extent.word = std::max(extent.word, std::min(width, face.lineHeight() * 3));
    return;
  }
  qreal line = 0;
  qreal word = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == forcedBreak) {
      line = word = 0;
      continue;
    }
    const qreal advance = face.advance(c);
    line += advance;
    if (c != u' ') word += advance;
    extent.line = std::max(extent.line, line);
    extent.word = std::max(extent.word, word);
    if (mayBreakBehind(text, i)) word = 0;
  }
}

}  // namespace korvel::output::pages
