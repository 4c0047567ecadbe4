#include "evidence/working_hours.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/numbers.h"
#include "base/text.h"

namespace korvel::evidence {

namespace {

using std::chrono::minutes;

constexpr std::array<std::string_view, 7> dayNames = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr unsigned minutesOfHour = 60;

std::optional<minutes> timeOfDay(std::string_view text) {
  constexpr std::size_t length = 5;
  constexpr unsigned hoursOfDay = 24;
  if (text.size() != length || text[2] != ':' || !isAllDigits(text.substr(0, 2)) || !isAllDigits(text.substr(3)))
    return std::nullopt;
  const auto hour = parseInteger<unsigned>(text.substr(0, 2));
  const auto minute = parseInteger<unsigned>(text.substr(3));
  if (!hour || !minute || *minute >= minutesOfHour || *hour * minutesOfHour + *minute > hoursOfDay * minutesOfHour)
    return std::nullopt;
  return minutes{*hour * minutesOfHour + *minute};
}

std::string timeText(minutes time) {
  const auto twoDigits = [](std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return twoDigits(time.count() / minutesOfHour) + ':' + twoDigits(time.count() % minutesOfHour);
}

}  // namespace

std::optional<std::pair<minutes, minutes>> hoursOf(std::string_view text) {
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto from = timeOfDay(text.substr(0, dash));
  const auto to = timeOfDay(text.substr(dash + 1));
  if (!from || !to) return std::nullopt;
  return std::pair{*from, *to};
}

std::string hoursText(const WorkingHours& hours) {
  return timeText(hours.from) + '-' + timeText(hours.to);
}

std::optional<std::bitset<7>> daysOf(std::string_view text) {
  std::bitset<dayNames.size()> days;
  std::string_view rest = text;
  while (true) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    const auto* const found = std::find_if(dayNames.begin(), dayNames.end(), [&](std::string_view name) {
      return equalsIgnoringAsciiCase(name, rest.substr(0, comma));
    });
    if (found == dayNames.end()) return std::nullopt;
    days.set(static_cast<std::size_t>(found - dayNames.begin()));
    if (comma == rest.size()) return days;
    rest.remove_prefix(comma + 1);
  }
}

std::string daysText(const std::bitset<7>& days) {
  std::string text;
  for (std::size_t i = 0; i < dayNames.size(); ++i)
    if (days[i]) text.append(text.empty() ? "" : ",").append(dayNames.at(i));
  return text;
}

}  // namespace korvel::evidence
