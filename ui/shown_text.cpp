#include "ui/shown_text.h"

#include <QChar>
#include <algorithm>

namespace korvel::ui {
namespace {

constexpr qsizetype tipCharacters = 2000;

bool isInvisibleFormat(char32_t character) {
  constexpr char32_t softHyphen = 0x00AD;
  constexpr char32_t nonJoiner = 0x200C;
  constexpr char32_t joiner = 0x200D;
  if (character == softHyphen || character == nonJoiner || character == joiner) return false;
  return QChar::category(character) == QChar::Other_Format;
}

/// Whether `c` may be the first half of a surrogate pair for a format character.
bool mayBeginFormat(QChar c) {
  return c.unicode() > 0x7F && (c.isHighSurrogate() || isInvisibleFormat(c.unicode()));
}

}  // namespace

QString visibleFormats(const QString& text) {
  if (std::none_of(text.cbegin(), text.cend(), mayBeginFormat)) return text;
  QString visible;
  visible.reserve(text.size() + 8);
  for (qsizetype at = 0; at < text.size(); ++at) {
    const QChar c = text.at(at);
    const bool pair = c.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate();
    const char32_t character = pair ? QChar::surrogateToUcs4(c, text.at(at + 1)) : c.unicode();
    if (isInvisibleFormat(character))
      visible += QStringLiteral("\\%1%2")
                     .arg(pair ? QLatin1Char('U') : QLatin1Char('u'))
                     .arg(QString::number(character, 16).toUpper().rightJustified(pair ? 8 : 4, QLatin1Char('0')));
    else
      visible += QStringView(text).mid(at, pair ? 2 : 1);
    if (pair) ++at;
  }
  return visible;
}

QString plainToolTip(const QString& text) {
  const QString shown = visibleFormats(text.size() > tipCharacters ? text.left(tipCharacters) + QChar(0x2026) : text);
  // The text is escaped. The element around it makes the toolkit treat it as rich text, and long lines wrap.
  return QStringLiteral("<div style='white-space:pre-wrap'>%1</div>").arg(shown.toHtmlEscaped());
}

}  // namespace korvel::ui
