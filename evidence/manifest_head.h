#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "evidence/manifest.h"
#include "output/page_head.h"
#include "settings/string_table.h"

namespace korvel::evidence {

/// What of an answer is on paper, and what only its pages say.
struct PrintedPart {
  std::string caption{};  ///< of the list
  std::size_t rows = 0;
  std::size_t ofRows = 0;  ///< that the list has without filters
  bool isCounted = false;  ///< the rows are numbers of records
  std::vector<std::string> columnsLeftOut{};
  std::vector<std::string> notes{};  ///< in the language of the pages
  std::string remark{};              ///< likewise, repeated on every page
  std::string printed{};             ///< when: local time with its offset, "2026-11-22T16:05:03+01:00"
};

/// The head of the pages that show an answer, in one language: where it comes from, what was asked for, what was
/// filtered and sorted, how many rows there are, and plainly whether some are missing. `count` writes a number.
[[nodiscard]] output::PageHead manifestHead(const Manifest& manifest, const PrintedPart& part,
                                            const settings::LanguageOffset& language,
                                            const std::function<std::string(std::size_t)>& count);

}  // namespace korvel::evidence
