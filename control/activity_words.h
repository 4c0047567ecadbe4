#pragma once

#include <QString>

#include "query/activity.h"

namespace korvel::control {

// Times of activity in words that every language reads alike, as lists show dates.

/// "2004-03-07 10:00", "2004-03-07" or "2004-03": the beginning of a period.
[[nodiscard]] QString beginName(query::ActivityHour begin, query::ActivityStep step);
/// "2004-03-07 10:00 – 12:00", "2004-03-07 – 2004-03-09", "2004-03": a span, of days where it has whole days only. The
/// last day is part of it, the last hour is where it ends.
[[nodiscard]] QString spanName(const query::ActivitySpan& span);
/// The period that begins there.
[[nodiscard]] QString periodName(query::ActivityHour begin, query::ActivityStep step);

}  // namespace korvel::control
