#pragma once

#include <string>

#include "evidence/comparison_words.h"
#include "output/page_head.h"

namespace korvel::evidence {

/// Who prints a comparison, and with what.
struct PrintingProgram {
  std::string program;
  std::string version;
  std::string printed;  ///< when: local time with its offset
};

/// The head of the pages that show a comparison: what the snapshot is of and when it was taken, what it was compared
/// with, whether they are equal, and the counts.
[[nodiscard]] output::PageHead comparisonHead(const ComparedSnapshot& compared, const ComparisonLanguage& language,
                                              const PrintingProgram& by);

}  // namespace korvel::evidence
