#include "query/limit_reached.h"

#include <gmock/gmock.h>

namespace korvel::query {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QueryReport filledReport(std::size_t results, std::vector<std::size_t> full) {
  return {QueryOutcome::filled, std::nullopt, std::move(full), results};
}

TEST(LimitReached, IsNamedByTheCategoriesOfTheCall) {
  const CategoryFlags flags = CategoryFlags().set(1).set(3).set(5);
  EXPECT_THAT(limitReached(flags, filledReport(3, {0, 2})),
              ElementsAre("Configuration / Alarms", "Runtime / User Archives"));
  EXPECT_THAT(limitReached(flags, filledReport(3, {1})), ElementsAre("Configuration / User Archives"));
  EXPECT_THAT(limitReached(flags, filledReport(3, {})), IsEmpty());
}

TEST(LimitReached, OfAllCategoriesTogetherIsThatOfTheWholeTrail) {
  EXPECT_THAT(limitReached(CategoryFlags().set(), filledReport(1, {0})), ElementsAre("ALL Audits"));
}

/// Which category is which cannot be told.
TEST(LimitReached, IsNamedByPlacesWhereOtherResultSetsCame) {
  EXPECT_THAT(limitReached(CategoryFlags().set(0).set(1), filledReport(3, {0, 2})),
              ElementsAre("result set 1 of 3", "result set 3 of 3"));
}

TEST(LimitReached, OfACompletedAnswerIsWhatIsStillCut) {
  using Kind = IncompletePart::Kind;
  CompletionReport report;
  report.incomplete = {{Kind::minute, {}, 1, Error(229, "")},
                       {Kind::minute, {}, 1, Error(229, "")},
                       {Kind::undated, {}, 4, Error(229, "")},
                       {Kind::ofAllDates, {}, std::nullopt, Error(229, "")}};
  EXPECT_THAT(limitReached(report), ElementsAre("Configuration / Alarms", "ALL Audits"));
  report.incomplete.clear();
  EXPECT_THAT(limitReached(report), IsEmpty());
}

}  // namespace
}  // namespace korvel::query
