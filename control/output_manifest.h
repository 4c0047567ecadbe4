#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "evidence/manifest.h"
#include "results/result_list.h"

namespace korvel::control {

class AnswerStatus;

/// Which of a list's rows are put out. Counts and conditions mean nothing where it is not filtered.
struct TakenRows {
  enum class Which { all, shown, wholeOfFiltered };
  Which which = Which::all;
  std::size_t shownCount = 0;
  std::size_t wholeCount = 0;
  std::vector<std::string> filters{};  ///< the conditions on the list
  bool isUndecided = false;            ///< values were too much for a regular expression
};

/// What an output of a list says of itself, as far as it is known before it is written: the answer's record, and what
/// of it is taken. An answer that no query has brought has a record without a question. In English, as all of a
/// manifest is.
[[nodiscard]] evidence::Manifest outputManifest(const AnswerStatus& answers, std::size_t page,
                                                const results::ResultList& list, const TakenRows& taken);

/// The rest: who makes the output, in which format, of which rows, and how many characters it does not hold. Asks the
/// system for the user, who may be known to a directory in the network.
void completeManifest(evidence::Manifest& manifest, std::string format, const results::ResultList& list,
                      std::size_t replacedCharacters);

}  // namespace korvel::control
