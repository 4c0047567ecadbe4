#include "query/alarm_dates.h"

#include <cstddef>

namespace korvel::query {
namespace {

constexpr std::size_t alarms = 1;  // parameter 2, counted from 0

}  // namespace

bool alarmsComeFromAllDates(const CategoryFlags& flags, const DateRange& range) noexcept {
  return range.DateRangeActive && flags[alarms] && !flags.all();
}

}  // namespace korvel::query
