#include "control/activity_words.h"

#include <chrono>

namespace korvel::control {
namespace {

using query::ActivityHour;
using query::ActivityStep;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::sys_days;
using std::chrono::year_month_day;

QString digits(unsigned number, int count) {
  return QStringLiteral("%1").arg(number, count, 10, QLatin1Char('0'));
}

QString monthName(ActivityHour hour) {
  const year_month_day date(floor<days>(hour));
  constexpr int yearDigits = 4;
  return digits(static_cast<unsigned>(static_cast<int>(date.year())), yearDigits) + QLatin1Char('-') +
         digits(static_cast<unsigned>(date.month()), 2);
}

QString dayName(ActivityHour hour) {
  const year_month_day date(floor<days>(hour));
  return monthName(hour) + QLatin1Char('-') + digits(static_cast<unsigned>(date.day()), 2);
}

QString hourName(ActivityHour hour) {
  return digits(static_cast<unsigned>((hour - floor<days>(hour)).count()), 2) + QStringLiteral(":00");
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
  return step == ActivityStep::hour ? dayName(begin) + QLatin1Char(' ') + hourName(begin) : dayName(begin);
}

QString spanName(const query::ActivitySpan& span) {
  if (isMidnight(span.from) && isMidnight(span.before)) {
    const ActivityHour last = span.before - days(1);
    const bool isMonth = query::periodOf(span.from, ActivityStep::month) == span.from &&
                         query::nextPeriod(span.from, ActivityStep::month) == span.before;
    if (isMonth) return monthName(span.from);
    return last <= span.from ? dayName(span.from) : fromTo(dayName(span.from), dayName(last));
  }
  const QString from = dayName(span.from) + QLatin1Char(' ') + hourName(span.from);
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
