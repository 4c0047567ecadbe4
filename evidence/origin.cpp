#include "evidence/origin.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace korvel::evidence {

namespace {

/// Seconds since 1970 that a clock shows.
std::chrono::sys_seconds shown(const std::tm& clock) {
  using namespace std::chrono;
  const year_month_day day{year{clock.tm_year + 1900}, month{static_cast<unsigned>(clock.tm_mon + 1)},
                           std::chrono::day{static_cast<unsigned>(clock.tm_mday)}};
  return sys_days{day} + hours{clock.tm_hour} + minutes{clock.tm_min} + seconds{clock.tm_sec};
}

}  // namespace

std::string localTimeText(std::chrono::system_clock::time_point moment) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
  const std::tm local = localClock(seconds);
  const auto offset = std::chrono::floor<std::chrono::minutes>(shown(local) - shown(greenwichClock(seconds))).count();
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d%c%02d:%02d",
                                  local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                                  local.tm_sec, offset < 0 ? '-' : '+', static_cast<int>(std::abs(offset) / 60),
                                  static_cast<int>(std::abs(offset) % 60)));
  return text.data();
}

}  // namespace korvel::evidence
