#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "evidence/snapshot_comparison.h"
#include "settings/string_table.h"

namespace korvel::evidence {

/// In which language a comparison is told, and how numbers are written in it.
struct ComparisonLanguage {
  settings::LanguageOffset language{};
  std::function<std::string(std::uint64_t)> count{};

  [[nodiscard]] std::string text(std::string_view key, const std::vector<std::string>& values = {}) const {
    return settings::filled(settings::ownText(key, language), values);
  }
};

/// What was found, in sentences without full stops: what differs comes first, else that nothing does; then newer rows,
/// and what the trail shows by itself.
[[nodiscard]] std::vector<std::string> comparisonSentences(const ComparedSnapshot& compared,
                                                           const ComparisonLanguage& language);

/// What happened to a row: "removed", "exchanged with 17".
[[nodiscard]] std::string findingText(const RowDifference& difference, const ComparisonLanguage& language);
[[nodiscard]] std::string findingText(const TrailOddity& oddity, const ComparisonLanguage& language);

/// The fields by which a reader knows a row: when, who, where, what.
[[nodiscard]] std::string rowText(const RowDifference& difference);

}  // namespace korvel::evidence
