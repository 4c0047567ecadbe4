#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

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

/// The three values of a call that are about dates.
struct DateTexts {
  bool active = false;
  std::string from = "False";
  std::string to = "False";
};
[[nodiscard]] DateTexts textsOf(const DateRange& range);

/// Whether the last day does not lie before the first: the same day on both sides is in order.
[[nodiscard]] bool isInOrder(const DateRange& range) noexcept;

/// A day of the calendar written as YYYY-MM-DD, four digits of the year (from 0100, the first that a date can hold) and
/// two of month and day; nothing for any other text.
[[nodiscard]] std::optional<std::chrono::year_month_day> parseDay(std::string_view text) noexcept;

}  // namespace korvel::query
