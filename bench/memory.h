#pragma once

namespace korvel::bench {

/// Megabytes of this process that are in the machine's memory, now and at the most since forgetPeak(); 0 where the
/// system does not tell.
[[nodiscard]] double residentMegabytes();
[[nodiscard]] double peakMegabytes();
/// Returns free memory to the system, and starts the peak anew.
void forgetPeak();

}  // namespace korvel::bench
