#pragma once

#include <chrono>
#include <string>

namespace korvel::query {

/// The date range that all instances of the control share.
struct DateRange {
  std::chrono::year_month_day RangeFromDate{};
  std::chrono::year_month_day RangeToDate{};
  bool DateRangeActive = false;
};

/// First and last moment of the range as the procedure's texts, "False" for both while no range is active.
/// 7 March 2004 gives "2004-03-07 00:00:00.000" and "2004-03-07 23:59:59.999".
[[nodiscard]] std::string fromDateText(const DateRange& range);
[[nodiscard]] std::string toDateText(const DateRange& range);

}  // namespace korvel::query
