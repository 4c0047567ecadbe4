#include "query/date_range.h"

namespace korvel::query {

namespace {

std::string twoDigits(unsigned number) {
  return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

std::string momentText(const DateRange& range, const std::chrono::year_month_day& day, std::string_view time) {
  if (!range.DateRangeActive) return "False";
  std::string text = std::to_string(static_cast<int>(day.year()));
  text += '-';
  text += twoDigits(static_cast<unsigned>(day.month()));
  text += '-';
  text += twoDigits(static_cast<unsigned>(day.day()));
  text += time;
  return text;
}

/// The number that `length` digits at `at` write, or -1.
int digitsAt(std::string_view text, std::size_t at, std::size_t length) noexcept {
  int number = 0;
  for (const char c : text.substr(at, length)) {
    if (c < '0' || c > '9') return -1;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

std::string fromDateText(const DateRange& range) {
  return momentText(range, range.RangeFromDate, " 00:00:00.000");
}

std::string toDateText(const DateRange& range) {
  return momentText(range, range.RangeToDate, " 23:59:59.999");
}

DateTexts textsOf(const DateRange& range) {
  return {range.DateRangeActive, fromDateText(range), toDateText(range)};
}

bool isInOrder(const DateRange& range) noexcept {
  return range.RangeToDate >= range.RangeFromDate;
}

std::optional<std::chrono::year_month_day> parseDay(std::string_view text) noexcept {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const int year = digitsAt(text, 0, 4);
  const int month = digitsAt(text, 5, 2);
  const int day = digitsAt(text, 8, 2);
  if (year < 100 || month < 0 || day < 0) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok()) return std::nullopt;
  return date;
}

}  // namespace korvel::query
