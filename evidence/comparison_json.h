#pragma once

#include <string>

#include "evidence/snapshot_comparison.h"

namespace korvel::evidence {

/// A comparison as JSON, ended by a line feed: both sides, all counts, each difference with its values and its whole
/// row, and what the trail shows by itself; docs/formats.md describes it.
[[nodiscard]] std::string comparisonJson(const ComparedSnapshot& compared);

}  // namespace korvel::evidence
