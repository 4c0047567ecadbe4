#include "control/forms/value_comparison.h"

#include <QLabel>
#include <algorithm>
#include <string_view>
#include <vector>

#include "base/text_difference.h"
#include "base/utf16.h"
#include "control/forms/value_field.h"
#include "control/texts.h"

namespace korvel::control {
namespace {

/// A description for screen readers has the beginning of long differences only.
constexpr qsizetype mostDescribed = 200;

/// The ranges of UTF-8 `text` in the units of its field.
std::vector<MarkSpan> spansOf(std::string_view text, const std::vector<ByteRange>& ranges) {
  std::vector<MarkSpan> spans;
  spans.reserve(ranges.size());
  std::size_t bytes = 0;
  qsizetype units = 0;
  const auto goOn = [&](std::size_t to) {
    units += static_cast<qsizetype>(utf16Length(text.substr(bytes, to - bytes)));
    bytes = to;
    return units;
  };
  for (const ByteRange& range : ranges) {
    const qsizetype begin = goOn(range.begin);
    spans.push_back({begin, goOn(range.end)});
  }
  return spans;
}

QString marksInWords(const QString& value, const std::vector<MarkSpan>& marks) {
  QString words;
  for (const MarkSpan& mark : marks) {
    if (!words.isEmpty()) words += QLatin1String(", ");
    const qsizetype room = mostDescribed - words.size();
    if (room <= 0) return words + QChar(0x2026);
    words += QChar(0x201C);
    words += QStringView(value).mid(mark.begin, std::min(mark.end - mark.begin, room));
    words += QChar(0x201D);
  }
  return words;
}

void setMarks(ValueField& field, MarkKind kind, std::string_view text, const std::vector<ByteRange>& ranges) {
  const std::vector<MarkSpan> marks = spansOf(text, ranges);
  field.setMarks(kind, marks);
  if (!marks.empty())
    field.setAccessibleDescription(ownText("record.onlyHere").arg(marksInWords(field.value(), marks)));
}

QString inWords(const TextDifference& difference, bool sameNull) {
  if (difference.isNone()) return ownText(sameNull ? "record.same" : "record.nullIsNotEmpty");
  if (!difference.isSmallest) return ownText("record.differsWidely");
  return ownText("record.differs").arg(countText(difference.charactersBefore), countText(difference.charactersAfter));
}

}  // namespace

ValueComparison::ValueComparison(ValueField& before, ValueField& after, QLabel& note)
    : before_(before), after_(after), note_(note) {}

void ValueComparison::show(const db::Cell& before, const db::Cell& after) {
  const TextDifference difference = differenceOf(before.text, after.text);
  setMarks(before_, MarkKind::removed, before.text, difference.before);
  setMarks(after_, MarkKind::added, after.text, difference.after);
  QString words = inWords(difference, before.isNull == after.isNull);
  if (!difference.isNone() && !before_.showsMarks() && !after_.showsMarks())
    words += QLatin1Char(' ') + ownText("record.differsBehind");
  note_.setText(words);
}

}  // namespace korvel::control
