#pragma once

#include <bitset>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "evidence/exceptions.h"

namespace korvel::evidence {

// Working hours as commands and settings write them.

/// "06:00-18:00"; the end may be "24:00".
[[nodiscard]] std::optional<std::pair<std::chrono::minutes, std::chrono::minutes>> hoursOf(std::string_view text);
[[nodiscard]] std::string hoursText(const WorkingHours& hours);
/// "mon,tue,sat", in any case of letters; at least one.
[[nodiscard]] std::optional<std::bitset<7>> daysOf(std::string_view text);
/// Empty where there are none.
[[nodiscard]] std::string daysText(const std::bitset<7>& days);

}  // namespace korvel::evidence
