#include "control/activity_words.h"

#include <chrono>

#include "query/date_slices.h"

namespace korvel::control {
namespace {

using query::ActivityHour;
using query::ActivityStep;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;

/// "2004-03-07 10:00", of which the names below are parts.
QString timeName(ActivityHour hour) {
  return QString::fromStdString(query::minuteText(hour));
}

QString monthName(ActivityHour hour) {
  constexpr int length = 7;
  return timeName(hour).left(length);
}

QString dayName(ActivityHour hour) {
  constexpr int length = 10;
  return timeName(hour).left(length);
}

QString hourName(ActivityHour hour) {
  constexpr int length = 5;
  return timeName(hour).right(length);
}

bool isMidnight(ActivityHour hour) {
  return hour == floor<days>(hour);
}

QString fromTo(const QString& from, const QString& to) {
  return from + QStringLiteral(" \u2013 ") + to;
}

}  // namespace

QString beginName(ActivityHour begin, ActivityStep step) {
  if (step == ActivityStep::month) return monthName(begin);
  return step == ActivityStep::hour ? timeName(begin) : dayName(begin);
}

QString spanName(const query::ActivitySpan& span) {
  if (isMidnight(span.from) && isMidnight(span.before)) {
    const ActivityHour last = span.before - days(1);
    const bool isMonth = query::periodOf(span.from, ActivityStep::month) == span.from &&
                         query::nextPeriod(span.from, ActivityStep::month) == span.before;
    if (isMonth) return monthName(span.from);
    return last <= span.from ? dayName(span.from) : fromTo(dayName(span.from), dayName(last));
  }
  const QString from = timeName(span.from);
  // The end of a day is said as its own, not as the beginning of the next one.
  const ActivityHour last = span.before - hours(1);
  const QString end = isMidnight(span.before) ? QStringLiteral("24:00") : hourName(span.before);
  const bool isOneDay = floor<days>(last) == floor<days>(span.from);
  return fromTo(from, isOneDay ? end : dayName(last) + QLatin1Char(' ') + end);
}

QString periodName(ActivityHour begin, ActivityStep step) {
  return spanName({begin, query::nextPeriod(begin, step)});
}

}  // namespace korvel::control
