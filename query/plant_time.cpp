#include "query/plant_time.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "base/numbers.h"
#include "base/text.h"
#include "query/audit_record.h"
#include "results/date_text.h"

namespace korvel::query {

namespace {

using std::chrono::minutes;
using std::chrono::nanoseconds;

constexpr std::string_view entryNumberName = "Nr";
constexpr std::string_view stampName = "DateTime";
constexpr std::string_view flagName = "T1";

/// The clock of no plant is set back by more.
constexpr std::chrono::hours longestRepeat{1};

/// Takes a number of two digits below `end` off `text`.
std::optional<int> takeTwoDigits(std::string_view& text, int end) noexcept {
  if (text.size() < 2 || !isDigit(text[0]) || !isDigit(text[1])) return std::nullopt;
  const int number = (text[0] - '0') * 10 + (text[1] - '0');
  text.remove_prefix(2);
  return number < end ? std::optional(number) : std::nullopt;
}

bool take(std::string_view& text, char c) noexcept {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

/// The digits behind the point of the seconds; what is finer than nanoseconds is passed over.
std::optional<nanoseconds> takeFraction(std::string_view& text) noexcept {
  nanoseconds fraction{};
  nanoseconds digit = std::chrono::milliseconds{100};
  bool any = false;
  for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1), digit /= 10, any = true)
    fraction += digit * (text.front() - '0');
  return any ? std::optional(fraction) : std::nullopt;
}

/// "Z", "+02:00" or "+0200".
std::optional<minutes> takeOffset(std::string_view& text) noexcept {
  if (take(text, 'Z')) return minutes{0};
  const bool west = text.starts_with('-');
  if (!west && !text.starts_with('+')) return std::nullopt;
  text.remove_prefix(1);
  constexpr int hoursEnd = 24;
  constexpr int minutesEnd = 60;
  const auto hours = takeTwoDigits(text, hoursEnd);
  static_cast<void>(take(text, ':'));
  const auto rest = takeTwoDigits(text, minutesEnd);
  if (!hours || !rest) return std::nullopt;
  const minutes offset = std::chrono::hours{*hours} + minutes{*rest};
  return west ? -offset : offset;
}

}  // namespace

Season seasonOf(const db::Cell& flag) noexcept {
  if (flag.isNull) return Season::unknown;
  const std::string_view text = trimBlanks(flag.text);
  if (text == "1" || equalsIgnoringAsciiCase(text, "true")) return Season::summer;
  if (text == "0" || equalsIgnoringAsciiCase(text, "false")) return Season::standard;
  return Season::unknown;
}

std::optional<WallTime> wallTimeOf(std::string_view stamp) noexcept {
  std::string_view text = trimBlanks(stamp);
  constexpr auto dayLength = static_cast<std::size_t>(results::DatePart::day);
  if (!results::isDateText(text) || text.size() <= dayLength) return std::nullopt;
  WallTime wall{text.substr(0, dayLength)};
  text.remove_prefix(dayLength + 1);
  constexpr int hoursEnd = 24;
  constexpr int sixty = 60;
  const auto hours = takeTwoDigits(text, hoursEnd);
  if (!hours || !take(text, ':')) return std::nullopt;
  const auto minute = takeTwoDigits(text, sixty);
  if (!minute) return std::nullopt;
  wall.time = std::chrono::hours{*hours} + minutes{*minute};
  if (take(text, ':')) {
    const auto seconds = takeTwoDigits(text, sixty);
    if (!seconds) return std::nullopt;
    wall.time += std::chrono::seconds{*seconds};
    if (take(text, '.')) {
      const auto fraction = takeFraction(text);
      if (!fraction) return std::nullopt;
      wall.time += *fraction;
    }
  }
  text = trimBlanks(text);
  if (text.empty()) return wall;
  wall.offset = takeOffset(text);
  return wall.offset && text.empty() ? std::optional(wall) : std::nullopt;
}

std::string offsetText(minutes offset) {
  constexpr int sixty = 60;
  const int size = std::abs(static_cast<int>(offset.count()));
  std::string text = offset < minutes{0} ? "-" : "+";
  for (const int part : {size / sixty, size % sixty}) {
    if (text.size() > 1) text += ':';
    text += static_cast<char>('0' + part / 10);
    text += static_cast<char>('0' + part % 10);
  }
  return text;
}

void RepeatedTimes::add(const db::Cell& entryNumber, const db::Cell& stamp, const db::Cell& flag) {
  if (const auto wall = wallTimeOf(stamp.text)) add(entryNumber, stamp.text, *wall, flag);
}

void RepeatedTimes::add(const db::Cell& entryNumber, std::string_view stamp, const WallTime& wall,
                        const db::Cell& flag) {
  if (wall.offset) return;
  const Season season = seasonOf(flag);
  const auto number = parseInteger<long long>(trimBlanks(entryNumber.text));
  if (!number || season == Season::unknown) return;
  Day& day = dayOf(wall.day);
  if (*number <= day.firstEntry) {
    day.firstEntry = *number;
    day.first = season;
  }
  if (*number >= day.lastEntry) {
    day.lastEntry = *number;
    day.last = season;
  }
  if (season == Season::summer && (!day.latestSummer || wall.time > *day.latestSummer)) {
    day.latestSummer = wall.time;
    day.latestSummerStamp = trimBlanks(stamp);
  }
  if (season == Season::standard && (!day.earliestStandard || wall.time < *day.earliestStandard)) {
    day.earliestStandard = wall.time;
    day.earliestStandardStamp = trimBlanks(stamp);
  }
}

void RepeatedTimes::add(const RepeatedTimes& others) {
  for (const auto& [name, other] : others.days_) addTo(dayOf(name), other);
}

RepeatedTimes::Day& RepeatedTimes::dayOf(std::string_view day) {
  if (latest_ != nullptr && latest_->first == day) return latest_->second;
  auto found = days_.find(day);
  if (found == days_.end()) found = days_.emplace(day, Day{}).first;
  latest_ = &*found;
  return found->second;
}

void RepeatedTimes::addTo(Day& day, const Day& other) {
  if (other.firstEntry <= day.firstEntry) {
    day.firstEntry = other.firstEntry;
    day.first = other.first;
  }
  if (other.lastEntry >= day.lastEntry) {
    day.lastEntry = other.lastEntry;
    day.last = other.last;
  }
  if (other.latestSummer && (!day.latestSummer || *other.latestSummer > *day.latestSummer)) {
    day.latestSummer = other.latestSummer;
    day.latestSummerStamp = other.latestSummerStamp;
  }
  if (other.earliestStandard && (!day.earliestStandard || *other.earliestStandard < *day.earliestStandard)) {
    day.earliestStandard = other.earliestStandard;
    day.earliestStandardStamp = other.earliestStandardStamp;
  }
}

std::optional<TimesOfDay> RepeatedTimes::timesOf(const Day& day) {
  // In spring the clock is set forward: standard time comes first then.
  if (day.first != Season::summer || day.last != Season::standard) return std::nullopt;
  if (!day.latestSummer || !day.earliestStandard || *day.earliestStandard > *day.latestSummer) return std::nullopt;
  if (*day.latestSummer - *day.earliestStandard >= longestRepeat) return std::nullopt;
  return TimesOfDay{*day.earliestStandard, *day.latestSummer, day.earliestStandardStamp, day.latestSummerStamp};
}

std::optional<TimesOfDay> RepeatedTimes::on(std::string_view day) const {
  const auto found = days_.find(day);
  return found == days_.end() ? std::nullopt : timesOf(found->second);
}

std::vector<TimesOfDay> RepeatedTimes::all() const {
  std::vector<TimesOfDay> times;
  for (const auto& each : days_)
    if (auto repeated = timesOf(each.second)) times.push_back(std::move(*repeated));
  return times;
}

std::optional<StampColumns> stampColumnsOf(std::span<const db::Field> fields) {
  const auto placeOf = [fields](std::string_view name) -> std::optional<std::size_t> {
    const auto& known = auditColumns();
    const auto column =
        std::find_if(known.begin(), known.end(), [&](const AuditColumn& each) { return each.name == name; });
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const db::Field& field) {
      return equalsIgnoringAsciiCase(field.name, column->name) || equalsIgnoringAsciiCase(field.name, column->caption);
    });
    if (found == fields.end()) return std::nullopt;
    return static_cast<std::size_t>(found - fields.begin());
  };
  const auto stamp = placeOf(stampName);
  if (!stamp) return std::nullopt;
  return StampColumns{*stamp, placeOf(entryNumberName), placeOf(flagName)};
}

std::optional<std::size_t> PlantTimes::stampColumn(results::RowId record) const {
  const auto columns = stampColumnsOf(store_->fieldsOf(record));
  return columns ? std::optional(columns->stamp) : std::nullopt;
}

std::optional<PlantTime> PlantTimes::of(results::RowId record) {
  const auto columns = stampColumnsOf(store_->fieldsOf(record));
  if (!columns) return std::nullopt;
  const auto wall = wallTimeOf(store_->cell(record, {columns->stamp}).text);
  if (!wall) return std::nullopt;
  PlantTime time{columns->flag ? seasonOf(store_->cell(record, {*columns->flag})) : Season::unknown, wall->offset};
  if (time.season == Season::unknown || time.offset) return time;
  const std::optional<TimesOfDay>& repeated = repeatedOn(wall->day);
  if (repeated && repeated->contains(wall->time))
    time.shown = time.season == Season::summer ? PlantTime::Shown::first : PlantTime::Shown::second;
  return time;
}

const std::optional<TimesOfDay>& PlantTimes::repeatedOn(std::string_view day) {
  if (const auto known = days_.find(day); known != days_.end()) return known->second;
  RepeatedTimes repeated;
  for (const results::ResultRows& result : store_->results()) {
    const auto columns = stampColumnsOf(store_->fieldsOf({static_cast<std::uint32_t>(result.first)}));
    if (!columns || !columns->entryNumber || !columns->flag) continue;
    for (std::size_t i = result.first; i < result.end; ++i) {
      const results::RowId row{static_cast<std::uint32_t>(i)};
      const db::Cell stamp = store_->cell(row, {columns->stamp});
      if (trimBlanks(stamp.text).starts_with(day))
        repeated.add(store_->cell(row, {*columns->entryNumber}), stamp, store_->cell(row, {*columns->flag}));
    }
  }
  return days_.emplace(day, repeated.on(day)).first->second;
}

}  // namespace korvel::query
