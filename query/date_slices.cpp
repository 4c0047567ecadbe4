#include "query/date_slices.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "query/date_range.h"

namespace korvel::query {

using std::chrono::days;
using std::chrono::minutes;
using std::chrono::sys_days;

namespace {

constexpr std::int64_t minutesOfHour = 60;
constexpr std::int64_t hoursOfDay = 24;
constexpr std::int64_t hoursOfWeek = 7 * hoursOfDay;

/// The number that two digits write; nothing for anything else.
std::optional<int> twoDigits(std::string_view text) noexcept {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (text.size() < 2 || !isDigit(text[0]) || !isDigit(text[1])) return std::nullopt;
  return (text[0] - '0') * 10 + (text[1] - '0');
}

}  // namespace

TimeSlice wholeDays(sys_days first, sys_days last) noexcept {
  return {Minute(first), Minute(last) + days(1) - minutes(1)};
}

TimeSlice allServerDays() noexcept {
  using namespace std::chrono;
  return wholeDays(sys_days(year(1753) / January / 1), sys_days(year(9999) / December / 31));
}

std::string minuteText(Minute minute) {
  const auto day = std::chrono::floor<days>(minute);
  const std::chrono::year_month_day date(day);
  const auto ofDay = static_cast<int>((minute - day).count());
  std::array<char, 48> text{};
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d", static_cast<int>(date.year()),
                                   static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                                   ofDay / static_cast<int>(minutesOfHour), ofDay % static_cast<int>(minutesOfHour));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<Minute> minuteOf(std::string_view time) noexcept {
  constexpr std::size_t dayLength = 10;
  constexpr std::size_t minuteLength = 16;
  const auto day = parseDay(time.substr(0, dayLength));
  if (!day) return std::nullopt;
  const Minute midnight{sys_days(*day)};
  if (time.size() == dayLength) return midnight;
  if (time.size() < minuteLength || (time[dayLength] != ' ' && time[dayLength] != 'T') || time[13] != ':')
    return std::nullopt;
  const auto hour = twoDigits(time.substr(11));
  const auto minute = twoDigits(time.substr(14));
  if (!hour || !minute || *hour >= hoursOfDay || *minute >= minutesOfHour) return std::nullopt;
  return midnight + std::chrono::hours(*hour) + minutes(*minute);
}

DateSlices::DateSlices(const TimeSlice& all, std::span<const Minute> sample, std::size_t rowLimit)
    : left_(all), width_(all.length()), rowLimit_(rowLimit), firstHour_(hourOf(all.first)) {
  if (!current()) return;
  fitToSample(sample, static_cast<double>(width_.count() - 1));
  cutBefore_ = true;
}

std::optional<TimeSlice> DateSlices::current() const noexcept {
  if (left_.first > left_.last) return std::nullopt;
  return TimeSlice{left_.first, std::min(left_.last, left_.first + width_ - minutes(1))};
}

void DateSlices::done(std::span<const Minute> rows) {
  const TimeSlice slice = current().value();
  std::size_t count = 0;
  for (const Minute minute : rows) {
    if (minute < slice.first || minute > slice.last) continue;
    ++history_[hourOf(minute)];
    ++count;
  }
  left_.first = slice.last + minutes(1);
  cutBefore_ = false;
  // After a slice without rows a wider one is tried.
  density_ = count > 0 ? static_cast<double>(count) / static_cast<double>(slice.length().count()) : density_ / 2;
  fitToHistory();
}

void DateSlices::cut(std::span<const Minute> sample) {
  const auto width = static_cast<double>(current().value().length().count());
  fitToSample(sample, cutBefore_ ? width / 2 : width - 1);
  cutBefore_ = true;
}

DateSlices::Hour DateSlices::hourOf(Minute minute) noexcept {
  return std::chrono::floor<std::chrono::hours>(minute).time_since_epoch().count();
}

double DateSlices::expected(Hour hour) const {
  const Hour end = hourOf(left_.first);
  for (const std::int64_t before : {hoursOfWeek, hoursOfDay}) {
    // Beyond what is known the last week, or day, goes on.
    const Hour known = hour < end + before ? hour - before : end - before + (hour - end) % before;
    if (known < firstHour_ || known >= end) continue;
    const auto found = history_.find(known);
    return found == history_.end() ? 0 : static_cast<double>(found->second);
  }
  return density_ * static_cast<double>(minutesOfHour);
}

double DateSlices::target() const noexcept {
  // A slice that is expected to be just below the limit is cut half of the time.
  constexpr double share = 0.92;
  const std::size_t room = rowLimit_ > reserved_ ? rowLimit_ - reserved_ : 0;
  return std::max(1.0, share * static_cast<double>(room));
}

void DateSlices::fitToSample(std::span<const Minute> sample, double most) {
  const TimeSlice slice = current().value();
  Minute low = slice.last;
  Minute high = slice.first;
  std::size_t count = 0;
  for (const Minute minute : sample) {
    if (minute < slice.first || minute > slice.last) continue;
    low = std::min(low, minute);
    high = std::max(high, minute);
    ++count;
  }
  double width = most / 2;
  if (count > 0) {
    // Where rows come in the order of their dates this is how dense they are; in any other order they are denser, and
    // the next cut narrows the slice further.
    density_ = static_cast<double>(count) / static_cast<double>((high - low + minutes(1)).count());
    width = static_cast<double>((low - slice.first).count()) + std::max(1.0, target() / density_);
  }
  setWidth(std::min(width, most));
}

void DateSlices::fitToHistory() {
  if (left_.first > left_.last) return;
  constexpr Hour farthest = Hour{2} * 366 * hoursOfDay;
  const Hour first = hourOf(left_.first);
  double rows = 0;
  double width = 0;
  for (Hour hour = first; hour < first + farthest; ++hour) {
    // Of the first hour a part may be done.
    const Minute begin = std::max(left_.first, Minute(std::chrono::hours(hour)));
    const auto length = static_cast<double>((Minute(std::chrono::hours(hour + 1)) - begin).count());
    const double ofHour = expected(hour) * length / static_cast<double>(minutesOfHour);
    if (rows + ofHour >= target()) {
      setWidth(width + (target() - rows) / ofHour * length);
      return;
    }
    rows += ofHour;
    width += length;
  }
  // As good as nothing is expected: all that is left is asked for at once.
  setWidth(static_cast<double>(left_.length().count()));
}

void DateSlices::setWidth(double width) {
  const auto all = static_cast<double>(std::max(left_.length(), minutes(1)).count());
  width_ = minutes(static_cast<minutes::rep>(std::clamp(std::floor(width), 1.0, all)));
}

}  // namespace korvel::query
