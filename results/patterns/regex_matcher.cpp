#include "results/patterns/regex_matcher.h"

#include <QRegularExpression>
#include <QString>
#include <QStringView>
#include <utility>
#include <vector>

#include "base/text.h"
#include "base/utf16.h"

namespace korvel::results {

namespace {

/// For each UTF-16 unit of a text, and its end, the byte of the UTF-8 text where its character begins.
std::vector<std::size_t> byteOffsets(std::string_view text) {
  std::vector<std::size_t> offsets;
  offsets.reserve(text.size() + 1);
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t at = text.size() - rest.size();
    const auto codePoint = takeCodePoint(rest);
    constexpr char32_t firstOfTwoUnits = 0x10000;
    offsets.push_back(at);
    if (codePoint && *codePoint >= firstOfTwoUnits) offsets.push_back(at);
  }
  offsets.push_back(text.size());
  return offsets;
}

/// Must be the beginning of a pattern. Matches without a character are none.
QString limits(unsigned steps) {
  return QStringLiteral("(*NOTEMPTY)(*LIMIT_MATCH=%1)").arg(steps);
}

std::vector<TextSpan> spansOf(const QRegularExpression& expression, std::string_view text, bool firstOnly,
                              const GaveUp& gaveUp) {
  std::vector<TextSpan> spans;
  // What is found is incomplete already, and such an expression may take long for every other text, too.
  if (gaveUp && *gaveUp) return spans;
  const QString subject = QStringView(utf16FromUtf8(text)).toString();
  std::vector<std::size_t> offsets;
  for (qsizetype from = 0; from <= subject.size();) {
    const QRegularExpressionMatch match = expression.match(subject, from);
    if (!match.isValid() && gaveUp) *gaveUp = true;
    if (!match.hasMatch()) break;
    from = match.capturedEnd();
    if (match.capturedLength() == 0) {
      // Never into the middle of a pair.
      from += from < subject.size() && subject.at(from).isHighSurrogate() ? 2 : 1;
      continue;
    }
    if (firstOnly) return {{0, text.size()}};
    if (offsets.empty()) offsets = byteOffsets(text);
    spans.push_back({offsets[static_cast<std::size_t>(match.capturedStart())],
                     offsets[static_cast<std::size_t>(match.capturedEnd())]});
  }
  return spans;
}

}  // namespace

std::variant<TextMatcher, PatternProblem> regexMatcher(std::string_view pattern, TextMatcher::Options options,
                                                       GaveUp gaveUp, unsigned steps) {
  QString text = QString::fromUtf8(pattern.data(), static_cast<qsizetype>(pattern.size()));
  QRegularExpression::PatternOptions patternOptions = QRegularExpression::UseUnicodePropertiesOption;
  if (!options.exactCase) patternOptions |= QRegularExpression::CaseInsensitiveOption;
  const QRegularExpression written(text, patternOptions);
  if (!written.isValid())
    return PatternProblem{written.errorString().toStdString(), static_cast<std::size_t>(written.patternErrorOffset())};
  if (options.wholeValue) text = QRegularExpression::anchoredPattern(text);
  const QRegularExpression expression(limits(steps) + text, patternOptions);
  expression.optimize();
  return TextMatcher([expression, gaveUp = std::move(gaveUp)](std::string_view shown, bool firstOnly) {
    return spansOf(expression, shown, firstOnly, gaveUp);
  });
}

}  // namespace korvel::results
