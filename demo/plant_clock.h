#pragma once

#include <chrono>
#include <string>

namespace korvel::demo {

/// A moment, free of summer time.
using Moment = std::chrono::sys_time<std::chrono::milliseconds>;

/// What the clock on the plant's wall shows (central European time). When summer time ends, the hour from 02:00 shows
/// twice; only `summer` tells the two apart.
struct WallTime {
  std::chrono::local_time<std::chrono::milliseconds> time;
  bool summer = false;
};

[[nodiscard]] WallTime wallTimeOf(Moment moment) noexcept;
[[nodiscard]] Moment momentOf(const WallTime& wall) noexcept;

/// "2004-03-07 13:45:59.123", written over `text`.
void writeTimeText(const WallTime& wall, std::string& text);

}  // namespace korvel::demo
