#pragma once

#include <vector>

#include "evidence/comparison_words.h"
#include "results/result_list.h"

namespace korvel::evidence {

/// What was found, as a list.
enum class ComparisonRows {
  compact,  ///< for people: a row for each difference, and another one for each further value that changed
  complete  ///< for programs: a row for each value that differs, of removed and inserted rows all that they had
};

/// What a row of the compact list is about.
struct ComparisonLine {
  const RowDifference* difference = nullptr;
  const ValueChange* value = nullptr;  ///< of a row that both have
  const TrailOddity* oddity = nullptr;
  bool isFirst = true;  ///< of its difference
};

/// In the order of the list; valid as long as `compared` is unchanged.
[[nodiscard]] std::vector<ComparisonLine> comparisonLines(const ComparedSnapshot& compared);

/// The differences in the order of their numbers, then what the trail shows by itself. Throws Error when memory runs
/// out.
[[nodiscard]] results::ResultList comparisonList(const ComparedSnapshot& compared, ComparisonRows rows,
                                                 const ComparisonLanguage& language);

}  // namespace korvel::evidence
