#pragma once

#include <string_view>

#include "query/date_range.h"
#include "query/filter_tree.h"

namespace korvel::query {

/// Whether the standard query for these categories and this range answers with alarm rows of all dates: the alarm
/// category's rows of the tables vel_Alg are deliberately not limited by the range. With all ten categories ticked the
/// procedure limits the whole trail, alarm rows included.
[[nodiscard]] bool alarmsComeFromAllDates(const CategoryFlags& flags, const DateRange& range) noexcept;

/// The text that says so: what whoever chose a range does not expect is told wherever the answer is read.
inline constexpr std::string_view alarmsOfAllDatesText = "query.alarmsOfAllDates";

}  // namespace korvel::query
