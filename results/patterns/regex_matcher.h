#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "results/text_matcher.h"

namespace korvel::results {

/// Why a text is no regular expression.
struct PatternProblem {
  std::string text;        ///< the toolkit's own words, in English
  std::size_t offset = 0;  ///< where in the pattern, in UTF-16 units
};

/// Set once an expression took too many steps for a text: it may match, but counts as not matching.
using GaveUp = std::shared_ptr<std::atomic<bool>>;

/// Steps that an expression may take for one text. A few expressions would take hours without a limit.
inline constexpr unsigned mostPatternSteps = 200'000;

/// Looks for a regular expression as the toolkit has them (those of Perl). Case is folded letter by letter unless it
/// counts; matches without a character are none. Bytes that are no text are matched as U+FFFD.
[[nodiscard]] std::variant<TextMatcher, PatternProblem> regexMatcher(std::string_view pattern,
                                                                     TextMatcher::Options options, GaveUp gaveUp = {},
                                                                     unsigned steps = mostPatternSteps);

}  // namespace korvel::results
