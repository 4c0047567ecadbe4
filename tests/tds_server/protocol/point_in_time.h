#pragma once

#include <cstdint>
#include <string_view>

namespace korvel::test::tds {

/// A point in time in the units of the wire format.
struct PointInTime {
  /// Days since 0001-01-01.
  std::int32_t days = 0;
  /// Units of 100 ns since midnight.
  std::int64_t ticks = 0;
  std::int16_t offsetMinutes = 0;
};

inline constexpr std::int64_t ticksPerSecond = 10'000'000;
inline constexpr std::int64_t ticksPerDay = 86'400 * ticksPerSecond;
/// Days from 0001-01-01 to 1900-01-01.
inline constexpr std::int32_t daysTo1900 = 693'595;

/// Reads "2024-02-29", "13:45:59.1234567", "2024-02-29 13:45:59.123" or the same with " +02:00" after it.
/// Throws std::invalid_argument for anything else.
[[nodiscard]] PointInTime parsePointInTime(std::string_view text);

}  // namespace korvel::test::tds
