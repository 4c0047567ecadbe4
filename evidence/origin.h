#pragma once

#include <chrono>
#include <string>

namespace korvel::evidence {

// Who made an output, and when.

/// The name under which the user is logged in at the system; empty where it tells none.
[[nodiscard]] std::string systemUser();
/// The computer's name; empty where it has none.
[[nodiscard]] std::string computerName();

/// A moment in local time with its offset: "2026-11-22T16:05:03+01:00".
[[nodiscard]] std::string localTimeText(std::chrono::system_clock::time_point moment);

/// What the clock shows at a moment: local, or that of Greenwich.
[[nodiscard]] std::tm localClock(std::time_t moment);
[[nodiscard]] std::tm greenwichClock(std::time_t moment);

}  // namespace korvel::evidence
