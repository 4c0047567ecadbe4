#include "output/pages/column_strips.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvel::output::pages {
namespace {

using testing::ElementsAre;

constexpr ColumnLimits limits{20, 0.5, 1};

ColumnWish wish(qreal headerWord, qreal bodyWord) {
  return {{headerWord, headerWord}, {bodyWord, bodyWord}};
}

TEST(ColumnStrips, AreOneWhereAllHaveRoom) {
  EXPECT_THAT(shareColumns({wish(10, 10), wish(500, 500), wish(10, 10)}, 60, 2, limits),
              ElementsAre(ElementsAre(0, 1, 2)));
}

TEST(ColumnStrips, BeginWithTheFirstColumnAgain) {
  const std::vector<ColumnWish> wishes(5, wish(18, 100));
  EXPECT_THAT(shareColumns(wishes, 66, 2, limits), ElementsAre(ElementsAre(0, 1, 2), ElementsAre(0, 3, 4)));
}

TEST(ColumnStrips, GiveNarrowColumnsWhatTheyNeedOnly) {
  const std::vector<ColumnWish> wishes(8, wish(4, 12));
  EXPECT_THAT(shareColumns(wishes, 64.2, 2, limits), ElementsAre(ElementsAre(0, 1, 2, 3, 4, 5, 6, 7)));
  EXPECT_THAT(shareColumns(wishes, 63, 2, limits), ElementsAre(ElementsAre(0, 1, 2, 3, 4, 5, 6), ElementsAre(0, 7)));
}

TEST(ColumnStrips, LeaveTheFirstColumnAwayWhereItTakesAllRoom) {
  const std::vector<ColumnWish> wishes(3, wish(100, 100));
  EXPECT_THAT(shareColumns(wishes, 30, 2, limits), ElementsAre(ElementsAre(0), ElementsAre(1), ElementsAre(2)));
  EXPECT_THAT(shareColumns(wishes, 1, 2, limits), ElementsAre(ElementsAre(0), ElementsAre(1), ElementsAre(2)));
}

TEST(ColumnStrips, OfNoColumnsAreOneWithoutAny) {
  EXPECT_THAT(shareColumns({}, 30, 2, limits), ElementsAre(ElementsAre()));
}

TEST(ColumnStrips, HaveRoomForEachOfTheirColumns) {
  for (const qreal available : {50.0, 200.0, 777.0}) {
    const std::vector<ColumnWish> wishes(400, wish(60, 35));
    for (const ColumnStrip& strip : shareColumns(wishes, available, 5, limits)) {
      const std::vector<ColumnWish> of(strip.size(), wish(60, 35));
      const ColumnPlan plan = planColumns(of, available, 5, limits.leastBodyScale, limits.leastHeaderScale);
      for (const qreal width : plan.widths) EXPECT_GE(width, 24.99) << available;
    }
  }
}

}  // namespace
}  // namespace korvel::output::pages
