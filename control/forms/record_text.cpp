#include "control/forms/record_text.h"

namespace korvel::control {
namespace {

constexpr auto indent = QLatin1String("  ");

/// Whether a program may begin a line behind this character.
bool endsLine(QChar c) {
  switch (c.unicode()) {
    case u'\n':
    case u'\v':
    case u'\f':
    case u'\r':
    case 0x85:
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
      return true;
    default:
      return false;
  }
}

}  // namespace

void RecordText::addField(const QString& caption, const QString& value, bool isNull) {
  addIndented(caption);
  if (isNull) {
    text_ += QLatin1String(" (NULL)");
  } else {
    text_ += QLatin1Char(':');
    if (!value.isEmpty()) text_ += QLatin1Char(' ');
    addIndented(value);
  }
  text_ += QLatin1Char('\n');
}

void RecordText::addIndented(const QString& text) {
  for (qsizetype at = 0; at < text.size(); ++at) {
    const QChar c = text[at];
    text_ += c;
    const bool pair = c == QLatin1Char('\r') && at + 1 < text.size() && text[at + 1] == QLatin1Char('\n');
    if (endsLine(c) && !pair) text_ += indent;
  }
}

}  // namespace korvel::control
