#pragma once

#include <cstdint>
#include <vector>

#include "demo/plant_clock.h"

namespace korvel::demo {

/// When things happen in a plant that works in shifts: much on weekday mornings, little at night and on Sundays, next
/// to nothing between the years. Covers two years from June 2003.
class Activity {
 public:
  Activity();

  /// The moment of event `index` of `count`, or the end of the two years for `index` = `count`. Never falls as the
  /// index rises; busy hours get more events.
  [[nodiscard]] Moment momentOf(std::uint64_t index, std::uint64_t count) const;

 private:
  std::vector<std::uint64_t> weightBefore_;  // of all hours before hour i; one entry more than there are hours
};

/// Whether the engineers' offices are staffed.
[[nodiscard]] bool isOfficeTime(const WallTime& wall) noexcept;
/// The crew 0..3 on duty: early, late and night shift from 6, 14 and 22 o'clock, rotating by weeks.
[[nodiscard]] std::size_t crewOnDuty(const WallTime& wall) noexcept;

}  // namespace korvel::demo
