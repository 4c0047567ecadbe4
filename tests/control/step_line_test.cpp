#include "control/forms/step_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace korvel::test {
namespace {

using control::StepLine;
using control::stepLineOf;
using control::StepPoint;

TEST(StepLine, GoesFromChangeToChange) {
  const StepLine line = stepLineOf({{10, 50, 40, true}, {20, 40, 30, true}}, 0, 30, 3);
  EXPECT_EQ(line.solid, (std::vector<QLineF>{
                            {0, 50, 10, 50}, {10, 40, 10, 50}, {10, 40, 20, 40}, {20, 30, 20, 40}, {20, 30, 30, 30}}));
  EXPECT_TRUE(line.broken.empty());
}

TEST(StepLine, IsBrokenUpToAChangeThatDoesNotContinue) {
  const StepLine line = stepLineOf({{10, 50, 40, true}, {20, 10, 30, false}}, 0, 30, 3);
  EXPECT_EQ(line.broken, (std::vector<QLineF>{{10, 40, 20, 40}}));
  EXPECT_NE(std::find(line.solid.begin(), line.solid.end(), QLineF(17, 10, 20, 10)), line.solid.end());
}

TEST(StepLine, HasNothingWhereThereIsNoValue) {
  EXPECT_TRUE(stepLineOf({}, 0, 30, 3).solid.empty());
  const StepLine line = stepLineOf({{10, std::nullopt, 40, true}, {20, 40, std::nullopt, true}}, 0, 30, 3);
  EXPECT_EQ(line.solid, (std::vector<QLineF>{{10, 40, 20, 40}}));
}

/// Values from the lowest to the highest in each dot of the width.
TEST(StepLine, OfVeryManyChangesShowsTheExtentOfEachDot) {
  constexpr int width = 300;
  constexpr int count = 100'000;
  std::vector<StepPoint> changes;
  std::map<int, std::pair<double, double>> extents;
  double value = 0;
  for (int i = 0; i < count; ++i) {
    const double x = static_cast<double>(width) * i / count;
    const double next = i == 54'321 ? 1'000 : (i * 7919) % 100;
    changes.push_back({x, value, next, true});
    auto& [lowest, highest] = extents.try_emplace(static_cast<int>(x), value, value).first->second;
    lowest = std::min({lowest, value, next});
    highest = std::max({highest, value, next});
    value = next;
  }
  const StepLine line = stepLineOf(changes, 0, width, 3);
  EXPECT_LE(line.solid.size(), 2U * width + 2);
  for (const QLineF& each : line.solid) {
    if (each.dx() != 0 || each.dy() == 0) continue;
    const auto& [lowest, highest] = extents.at(static_cast<int>(each.x1()));
    EXPECT_EQ(std::pair(each.y1(), each.y2()), std::pair(lowest, highest)) << each.x1();
    extents.erase(static_cast<int>(each.x1()));
  }
  EXPECT_TRUE(extents.empty()) << "no dot is left out";
}

}  // namespace
}  // namespace korvel::test
