#include "demo/activity.h"

#include <algorithm>

namespace korvel::demo {

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;

// Monday 2 June 2003 to Tuesday 31 May 2005, midnight of the plant's (summer) time.
constexpr Moment firstMoment = std::chrono::sys_days{std::chrono::June / 2 / 2003} - 2h;
constexpr Moment endMoment = std::chrono::sys_days{std::chrono::June / 1 / 2005} - 2h;

struct WallHour {
  std::chrono::weekday weekday;
  int hour;
  std::chrono::year_month_day date;
};

WallHour hourOf(const WallTime& wall) noexcept {
  const auto day = floor<days>(wall.time);
  return {std::chrono::weekday{day}, static_cast<int>(floor<hours>(wall.time - day).count()),
          std::chrono::year_month_day{day}};
}

bool isWeekend(std::chrono::weekday day) noexcept {
  return day == std::chrono::Saturday || day == std::chrono::Sunday;
}

bool isBetweenTheYears(const std::chrono::year_month_day& date) noexcept {
  return (date.month() == std::chrono::December && date.day() >= std::chrono::day{24}) ||
         (date.month() == std::chrono::January && date.day() == std::chrono::day{1});
}

bool isOfficeHour(const WallHour& at) noexcept {
  return !isWeekend(at.weekday) && !isBetweenTheYears(at.date) && at.hour >= 7 && at.hour < 17;
}

std::uint64_t weightOf(const WallHour& at) noexcept {
  if (isBetweenTheYears(at.date)) return 4;
  if (isOfficeHour(at)) return 150;
  const bool night = at.hour < 6 || at.hour >= 22;
  if (at.weekday == std::chrono::Sunday) return night ? 14 : 22;
  if (at.weekday == std::chrono::Saturday) return night ? 20 : 40;
  return night ? 26 : 60;
}

}  // namespace

Activity::Activity() {
  weightBefore_.push_back(0);
  for (Moment hour = firstMoment; hour < endMoment; hour += 1h)
    weightBefore_.push_back(weightBefore_.back() + weightOf(hourOf(wallTimeOf(hour))));
}

Moment Activity::momentOf(std::uint64_t index, std::uint64_t count) const {
  if (index >= count) return endMoment;
  // In whole numbers, so that every machine agrees: the weight passed before this event, and the rest of the division.
  const std::uint64_t total = weightBefore_.back();
  const std::uint64_t passed = index * total / count;
  const std::uint64_t rest = index * total % count;
  const auto next = std::upper_bound(weightBefore_.begin(), weightBefore_.end(), passed);
  const auto hour = static_cast<std::size_t>(next - weightBefore_.begin()) - 1;
  const std::uint64_t weight = weightBefore_[hour + 1] - weightBefore_[hour];
  constexpr std::uint64_t hourMilliseconds = 3'600'000;
  const std::uint64_t inHour =
      ((passed - weightBefore_[hour]) * hourMilliseconds + rest * hourMilliseconds / count) / weight;
  return firstMoment + hours{hour} + std::chrono::milliseconds{inHour};
}

bool isOfficeTime(const WallTime& wall) noexcept {
  return isOfficeHour(hourOf(wall));
}

std::size_t crewOnDuty(const WallTime& wall) noexcept {
  // The night shift belongs to the day on which it began.
  const auto shifted = wall.time - 6h;
  const auto day = floor<days>(shifted);
  const auto shift = static_cast<std::size_t>(floor<hours>(shifted - day).count() / 8);
  const auto week = static_cast<std::size_t>(day.time_since_epoch().count() / 7);
  return (shift + week) % 4;
}

}  // namespace korvel::demo
