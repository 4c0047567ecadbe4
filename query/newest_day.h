#pragma once

#include <chrono>
#include <optional>

#include "results/result_list.h"

namespace korvel::query {

/// The last day that a row of an audit trail's list lies on, by its column "DateTime"; nothing where no row tells one.
/// Throws Error when memory runs out.
[[nodiscard]] std::optional<std::chrono::year_month_day> newestDay(const results::ResultList& list);

}  // namespace korvel::query
