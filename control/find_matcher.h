#pragma once

#include <QString>
#include <optional>

#include "results/patterns/regex_matcher.h"
#include "results/text_matcher.h"
#include "ui/find_bar.h"

namespace korvel::control {

/// What a request of a find bar means for lists.
struct FindMatcher {
  /// Nothing where nothing is searched for, or `problem` says why not.
  std::optional<results::TextMatcher> matcher = {};
  /// Why a regular expression is none, in the toolkit's words; empty where there is no such thing.
  QString problem = {};
  /// Set once a value was too much for a regular expression: it may match, but is not among the hits.
  results::GaveUp gaveUp = {};

  [[nodiscard]] bool hasGivenUp() const { return gaveUp && *gaveUp; }
};

/// `steps` bounds what a regular expression may take for one value.
[[nodiscard]] FindMatcher findMatcher(const ui::FindRequest& request, unsigned steps = results::mostPatternSteps);

}  // namespace korvel::control
