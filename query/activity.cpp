#include "query/activity.h"

#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/numbers.h"
#include "query/date_range.h"
#include "results/date_text.h"
#include "results/memory_watch.h"
#include "results/row_groups.h"

namespace korvel::query {

namespace {

using results::DatePart;
using results::GroupKey;
using results::RowGroup;
using results::ShownValue;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::months;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::size_t dayLength = static_cast<std::size_t>(DatePart::day);

/// How many periods lie between the beginnings of two.
std::size_t periodsBetween(ActivityHour first, ActivityHour last, ActivityStep step) {
  const auto apart = last - first;
  switch (step) {
    case ActivityStep::hour:
      return static_cast<std::size_t>(apart.count());
    case ActivityStep::day:
      return static_cast<std::size_t>(apart / days(1));
    case ActivityStep::week:
      return static_cast<std::size_t>(apart / days(7));
    case ActivityStep::month:
      break;
  }
  const year_month_day from(floor<days>(first));
  const year_month_day to(floor<days>(last));
  return static_cast<std::size_t>((to.year() / to.month() - from.year() / from.month()).count());
}

/// The rows of one hour or day and kind.
struct DatedGroup {
  ActivityHour time;
  std::size_t kind = 0;
  std::size_t count = 0;
};

/// `number` with so many digits.
std::string digits(unsigned number, std::size_t count) {
  std::string text = std::to_string(number);
  return text.insert(0, count - std::min(count, text.size()), '0');
}

/// "2004-03-07 10", the day alone at its beginning; empty after the last year that a text can name.
std::string beginText(ActivityHour hour) {
  const sys_days day = floor<days>(hour);
  const year_month_day date(day);
  constexpr int lastYear = 9999;
  constexpr std::size_t yearDigits = 4;
  if (static_cast<int>(date.year()) > lastYear) return {};
  std::string text = digits(static_cast<unsigned>(static_cast<int>(date.year())), yearDigits) + '-' +
                     digits(static_cast<unsigned>(date.month()), 2) + '-' +
                     digits(static_cast<unsigned>(date.day()), 2);
  const auto hourOfDay = static_cast<unsigned>((hour - day).count());
  return hourOfDay == 0 ? text : text + ' ' + digits(hourOfDay, 2);
}

}  // namespace

std::optional<ActivityHour> activityHour(std::string_view text) {
  const auto day = results::isDateText(text) ? parseDay(text.substr(0, dayLength)) : std::nullopt;
  if (!day) return std::nullopt;
  const std::string_view hour = text.substr(std::min(text.size(), dayLength + 1)).substr(0, 2);
  int number = 0;
  if (hour.size() == 2 && isAllDigits(hour)) number = (hour[0] - '0') * 10 + (hour[1] - '0');
  constexpr int hoursOfDay = 24;
  return sys_days(*day) + hours(number < hoursOfDay ? number : 0);
}

results::TextRange textRange(const ActivitySpan& span) {
  return {beginText(span.from), beginText(span.before)};
}

std::optional<ActivitySpan> spanOf(const results::TextRange& range) {
  const auto from = activityHour(range.from);
  const auto before = range.before.empty() ? ActivityHour::max() : activityHour(range.before);
  if (!from || !before) return std::nullopt;
  return ActivitySpan{*from, *before};
}

std::size_t ActivityBar::total() const noexcept {
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

ActivityHour periodOf(ActivityHour time, ActivityStep step) noexcept {
  if (step == ActivityStep::hour) return time;
  const sys_days day = floor<days>(time);
  if (step == ActivityStep::day) return day;
  if (step == ActivityStep::week) return day - (std::chrono::weekday(day) - std::chrono::Monday);
  const year_month_day date(day);
  return sys_days(date.year() / date.month() / 1);
}

ActivityHour nextPeriod(ActivityHour begin, ActivityStep step) noexcept {
  switch (step) {
    case ActivityStep::hour:
      return begin + hours(1);
    case ActivityStep::day:
      return begin + days(1);
    case ActivityStep::week:
      return begin + days(7);
    case ActivityStep::month:
      break;
  }
  return sys_days(year_month_day(floor<days>(begin)) + months(1));
}

Activity activityOf(const results::ResultList& list, results::ColumnIndex time,
                    std::optional<results::ColumnIndex> kind, ActivityStep step, std::size_t mostKinds,
                    std::size_t mostBars) {
  try {
    Activity activity{.step = step, .hasOthers = !kind};
    const GroupKey byKind{kind.value_or(time)};
    if (kind)
      for (RowGroup& group : results::groupRows(list, {&byKind, 1}))
        activity.kinds.push_back(std::move(group.values.front()));
    if (activity.kinds.size() > mostKinds + 1) {
      activity.kinds.resize(mostKinds);
      activity.hasOthers = true;
    }

    // Weeks and months are made of days, so that a text that is no day of the calendar is not taken for its month.
    const std::array keys{GroupKey{time, step == ActivityStep::hour ? DatePart::hour : DatePart::day}, byKind};
    std::vector<DatedGroup> groups;
    for (const RowGroup& group : results::groupRows(list, std::span(keys).first(kind ? 2 : 1))) {
      const auto moment = activityHour(group.values.front().text);
      const auto place = std::find(activity.kinds.begin(), activity.kinds.end(), group.values.back());
      if (moment)
        groups.push_back({*moment, static_cast<std::size_t>(place - activity.kinds.begin()), group.count});
      else
        activity.undated += group.count;
    }
    if (groups.empty()) return activity;

    const auto ends = std::minmax_element(groups.begin(), groups.end(),
                                          [](const DatedGroup& a, const DatedGroup& b) { return a.time < b.time; });
    const auto barCount = [&] {
      return 1 + periodsBetween(periodOf(ends.first->time, activity.step), periodOf(ends.second->time, activity.step),
                                activity.step);
    };
    while (activity.step != ActivityStep::month && barCount() > mostBars)
      activity.step = static_cast<ActivityStep>(static_cast<int>(activity.step) + 1);
    activity.bars.reserve(barCount());
    ActivityHour begin = periodOf(ends.first->time, activity.step);
    const ActivityHour firstBegin = begin;
    for (std::size_t left = barCount(); left > 0; --left, begin = nextPeriod(begin, activity.step))
      activity.bars.push_back({begin, std::vector<std::size_t>(activity.kindCount(), 0)});
    for (const DatedGroup& group : groups) {
      const std::size_t bar = periodsBetween(firstBegin, periodOf(group.time, activity.step), activity.step);
      activity.bars[bar].counts[group.kind] += group.count;
    }
    return activity;
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

}  // namespace korvel::query
