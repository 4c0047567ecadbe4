#pragma once

#include <QLineF>
#include <optional>
#include <vector>

namespace korvel::control {

/// A change as it is drawn: where it is, from what height to what. Without a height where there was no value.
struct StepPoint {
  double x = 0;
  std::optional<double> before;
  std::optional<double> after;
  bool continues = true;  ///< from the change before
};

/// The lines of a value that stays as it is from change to change.
struct StepLine {
  std::vector<QLineF> solid;
  std::vector<QLineF> broken;  ///< up to changes that do not continue
};

/// The line through changes from the left to the right, drawn from `left` to `right`; `tick` is how long the line is
/// that shows what was before a change that does not continue. Changes that share a dot in the width are one upright
/// line from their lowest value to their highest, so that there are no more lines than dots to tell them apart.
[[nodiscard]] StepLine stepLineOf(const std::vector<StepPoint>& changes, double left, double right, double tick);

}  // namespace korvel::control
