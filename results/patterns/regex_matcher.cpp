#include "results/patterns/regex_matcher.h"

#include <QRegularExpression>
#include <QString>
#include <QStringView>
#include <algorithm>
#include <iterator>
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

/// How a pattern calls itself as a whole.
constexpr const char* selfCalls[] = {"(?R)", "(?0)", "\\g<0>", "\\g'0'"};

// With this compiler the memory of a thread's variables is given back before they are destroyed. The library keeps the
// stack of compiled expressions in such a variable, so a thread that had used one could crash at its end.
#ifdef __MINGW32__
constexpr const char* compiling = "(*NO_JIT)";
#else
constexpr const char* compiling = "";
#endif

/// Must be the beginning of a pattern. Matches without a character are none.
QString limits(unsigned steps) {
  return QLatin1String(compiling) + QStringLiteral("(*NOTEMPTY)(*LIMIT_MATCH=%1)").arg(steps);
}

/// The settings at the beginning of a pattern, which mean something only there, such as "(*ANYCRLF)".
QString settingsOf(const QString& pattern) {
  static const QRegularExpression settings(QStringLiteral(
      "\\A(?:\\(\\*(?:UTF|UCP|NOTEMPTY(?:_ATSTART)?|NO_(?:AUTO_POSSESS|DOTSTAR_ANCHOR|JIT|START_OPT)|"
      "LIMIT_(?:MATCH|DEPTH|HEAP|RECURSION)=\\d+|CR|LF|CRLF|ANYCRLF|ANY|NUL|BSR_(?:ANYCRLF|UNICODE))\\))*"));
  return settings.match(pattern).captured();
}

/// What ends a quotation ("\Q") or a comment that a pattern leaves open, so that more can stand behind it.
QString closing(const QString& pattern, QRegularExpression::PatternOptions options) {
  // A parenthesis that closes nothing is an error, unless it is quoted or part of a comment.
  for (const QString& close : {QString(), QStringLiteral("\\E"), QStringLiteral("\r\n")})
    if (!QRegularExpression(pattern + close + QLatin1Char(')'), options).isValid()) return close;
  return {};
}

/// The pattern, for matches that end at the end of the text.
QString upToTheEnd(const QString& pattern, QRegularExpression::PatternOptions options) {
  const QString settings = settingsOf(pattern);
  const QString rest = pattern.mid(settings.size());
  // A pattern that calls itself must end anywhere then.
  const bool callsItself = std::any_of(std::begin(selfCalls), std::end(selfCalls),
                                       [&](const char* call) { return rest.contains(QLatin1String(call)); });
  return settings + QStringLiteral("(?:") + rest + closing(pattern, options) +
         (callsItself ? QStringLiteral(")(?(R)|\\z)") : QStringLiteral(")\\z"));
}

/// Matches the whole text or nothing.
std::vector<TextSpan> wholeSpanOf(const QRegularExpression& expression, std::string_view text, const GaveUp& gaveUp) {
  if (gaveUp && *gaveUp) return {};
  const QString subject = QStringView(utf16FromUtf8(text)).toString();
  const QRegularExpressionMatch match =
      expression.match(subject, 0, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
  if (!match.isValid() && gaveUp) *gaveUp = true;
  // "(*ACCEPT)" ends a match before the end of the pattern.
  if (!match.hasMatch() || match.capturedEnd() != subject.size()) return {};
  return {{0, text.size()}};
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
  if (options.wholeValue) text = upToTheEnd(text, patternOptions);
  const QRegularExpression expression(limits(steps) + text, patternOptions);
  expression.optimize();
  return TextMatcher(
      [expression, gaveUp = std::move(gaveUp), whole = options.wholeValue](std::string_view shown, bool firstOnly) {
        return whole ? wholeSpanOf(expression, shown, gaveUp) : spansOf(expression, shown, firstOnly, gaveUp);
      });
}

}  // namespace korvel::results
