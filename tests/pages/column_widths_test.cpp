#include "output/pages/column_widths.h"

#include <gtest/gtest.h>

#include <numeric>

namespace korvel::output::pages {
namespace {

ColumnWish wish(qreal headerWord, qreal bodyLine, qreal bodyWord) {
  return {{headerWord, headerWord}, {bodyLine, bodyWord}};
}

qreal sumOf(const ColumnPlan& plan) {
  return std::accumulate(plan.widths.begin(), plan.widths.end(), qreal{0});
}

TEST(ColumnWidths, AreAsWideAsTheirLinesWhereThereIsRoom) {
  const auto plan = planColumns({wish(10, 100, 20), wish(50, 20, 20)}, 1000, 4, 0.7, 0.7);
  EXPECT_NEAR(plan.widths.at(0), 104, 1);
  EXPECT_NEAR(plan.widths.at(1), 54, 1);
  EXPECT_EQ(plan.bodyScale, 1);
}

TEST(ColumnWidths, FillThePageWhereLinesAreBroken) {
  const auto plan = planColumns({wish(10, 5000, 50), wish(10, 20, 20), wish(10, 1000, 50)}, 500, 4, 0.7, 0.7);
  EXPECT_NEAR(sumOf(plan), 500, 0.01);
  EXPECT_GT(plan.widths.at(0), 54);
  EXPECT_NEAR(plan.widths.at(1), 24, 1);
}

TEST(ColumnWidths, FontsShrinkBeforeWordsAreBroken) {
  const std::vector<ColumnWish> wishes(10, wish(50, 50, 50));
  const auto plan = planColumns(wishes, 450, 2, 0.5, 0.5);
  EXPECT_LT(plan.bodyScale, 1);
  EXPECT_GE(plan.bodyScale, 0.5);
  EXPECT_LE(sumOf(plan), 450);
}

TEST(ColumnWidths, FontsShrinkToTheirLeastSizeAndNoFurther) {
  const ColumnPlan plan = planColumns(std::vector<ColumnWish>(10, wish(50, 50, 50)), 100, 2, 0.72, 0.83);
  EXPECT_DOUBLE_EQ(plan.bodyScale, 0.72);
  EXPECT_DOUBLE_EQ(plan.headerScale, 0.83);
}

TEST(ColumnWidths, WhereNothingHelpsTheWidestGiveWay) {
  std::vector<ColumnWish> wishes(50, wish(100, 100, 100));
  wishes.front() = wish(2, 2, 2);
  const auto plan = planColumns(wishes, 500, 2, 0.9, 0.9);
  EXPECT_NEAR(sumOf(plan), 500, 0.01);
  EXPECT_NEAR(plan.widths.front(), 4, 0.5);
}

TEST(ColumnWidths, DoNotFitWhereTheirPaddingDoesNot) {
  const std::vector<ColumnWish> wishes(10, wish(50, 50, 50));
  EXPECT_TRUE(fitsUnbroken(wishes, 510, 0));
  EXPECT_FALSE(fitsUnbroken(wishes, 510, 4));
  EXPECT_TRUE(fitsUnbroken(wishes, 550, 4));
}

TEST(ColumnWidths, OfNoColumnsAreNone) {
  EXPECT_TRUE(planColumns({}, 500, 2, 0.9, 0.9).widths.empty());
}

TEST(ColumnWidths, FollowProportionsAsFarAsWordsFit) {
  // No line is broken where the second column is so wide.
  const ColumnPlan roomy = planColumns({wish(10, 20, 20), wish(10, 90, 20)}, 1000, 0, 1, 1, {1, 3});
  EXPECT_NEAR(roomy.widths.at(1) / roomy.widths.at(0), 3, 0.01);
  EXPECT_NEAR(roomy.widths.at(1), 90, 1);
  // All of the page is used where lines are broken.
  const ColumnPlan full = planColumns({wish(10, 400, 20), wish(10, 400, 20)}, 400, 0, 1, 1, {1, 3});
  EXPECT_NEAR(full.widths.at(0), 100, 1);
  EXPECT_NEAR(sumOf(full), 400, 0.01);
  // Too narrow for its word: the others share what is left.
  const ColumnPlan least =
      planColumns({wish(80, 400, 20), wish(10, 400, 20), wish(10, 400, 20)}, 400, 0, 1, 1, {1, 5, 10});
  EXPECT_NEAR(least.widths.at(0), 80, 1);
  EXPECT_NEAR(least.widths.at(2) / least.widths.at(1), 2, 0.01);
  EXPECT_NEAR(sumOf(least), 400, 0.01);
}

}  // namespace
}  // namespace korvel::output::pages
