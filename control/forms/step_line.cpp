#include "control/forms/step_line.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace korvel::control {
namespace {

/// The heights that several changes in one dot have together.
class Extent {
 public:
  void add(std::optional<double> height) {
    if (!height) return;
    lowest_ = isAny_ ? std::min(lowest_, *height) : *height;
    highest_ = isAny_ ? std::max(highest_, *height) : *height;
    isAny_ = true;
  }
  [[nodiscard]] QLineF upright(double x) const { return {x, lowest_, x, highest_}; }
  [[nodiscard]] bool isLong() const { return isAny_ && highest_ > lowest_; }

 private:
  double lowest_ = 0;
  double highest_ = 0;
  bool isAny_ = false;
};

}  // namespace

StepLine stepLineOf(const std::vector<StepPoint>& changes, double left, double right, double tick) {
  StepLine line;
  if (changes.empty()) return line;
  double from = left;
  std::optional<double> held = changes.front().before;
  for (std::size_t first = 0; first < changes.size();) {
    const StepPoint& change = changes[first];
    if (held) (change.continues ? line.solid : line.broken).emplace_back(from, *held, change.x, *held);
    std::size_t end = first + 1;
    while (end < changes.size() && std::floor(changes[end].x) == std::floor(change.x)) ++end;
    Extent extent;
    for (std::size_t i = first; i < end; ++i) {
      extent.add(changes[i].before);
      extent.add(changes[i].after);
    }
    const bool isAlone = end == first + 1;
    if (isAlone ? change.before && change.after : extent.isLong()) line.solid.push_back(extent.upright(change.x));
    if (!change.continues && change.before)
      line.solid.emplace_back(change.x - tick, *change.before, change.x, *change.before);
    from = changes[end - 1].x;
    held = changes[end - 1].after;
    first = end;
  }
  if (held) line.solid.emplace_back(from, *held, right, *held);
  return line;
}

}  // namespace korvel::control
