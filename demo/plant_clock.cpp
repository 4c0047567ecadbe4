#include "demo/plant_clock.h"

namespace korvel::demo {

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::last;
using std::chrono::Sunday;
using std::chrono::sys_days;

constexpr auto winterOffset = 1h;
constexpr auto summerOffset = 2h;

/// All of the European Union changes its clocks at 01:00 universal time on the last Sundays of March and October.
bool isSummer(Moment moment) noexcept {
  const auto year = std::chrono::year_month_day{floor<days>(moment)}.year();
  return moment >= sys_days{year / 3 / Sunday[last]} + 1h && moment < sys_days{year / 10 / Sunday[last]} + 1h;
}

void putDigits(char* place, unsigned value, int digits) noexcept {
  for (int i = digits - 1; i >= 0; --i) {
    place[i] = static_cast<char>('0' + value % 10U);
    value /= 10U;
  }
}

}  // namespace

WallTime wallTimeOf(Moment moment) noexcept {
  const bool summer = isSummer(moment);
  const auto shown = moment.time_since_epoch() + (summer ? summerOffset : winterOffset);
  return {std::chrono::local_time<std::chrono::milliseconds>{shown}, summer};
}

Moment momentOf(const WallTime& wall) noexcept {
  return Moment{wall.time.time_since_epoch() - (wall.summer ? summerOffset : winterOffset)};
}

void writeTimeText(const WallTime& wall, std::string& text) {
  const auto day = floor<days>(wall.time);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{wall.time - day};
  text.assign("0000-00-00 00:00:00.000");
  char* const place = text.data();
  putDigits(place, static_cast<unsigned>(static_cast<int>(date.year())), 4);
  putDigits(place + 5, static_cast<unsigned>(date.month()), 2);
  putDigits(place + 8, static_cast<unsigned>(date.day()), 2);
  putDigits(place + 11, static_cast<unsigned>(time.hours().count()), 2);
  putDigits(place + 14, static_cast<unsigned>(time.minutes().count()), 2);
  putDigits(place + 17, static_cast<unsigned>(time.seconds().count()), 2);
  putDigits(place + 20, static_cast<unsigned>(time.subseconds().count()), 3);
}

}  // namespace korvel::demo
