#include "tests/query/complete_query_fixture.h"

namespace korvel::query {
namespace {

/// All choices of categories, shared among several tests, which run at the same time.
class EveryCombination : public CompleteQuery, public testing::WithParamInterface<unsigned long> {};

TEST_P(EveryCombination, OfCategoriesIsTheUnionWithoutTheLimit) {
  Server few(trailOf(10));
  for (unsigned long bits = GetParam(); bits < 1024; bits += 8)
    for (const DateRange& range : {noRange, aprilToMay}) expectWhole(few, bits == 0 ? all : CategoryFlags(bits), range);
}

INSTANTIATE_TEST_SUITE_P(Eighths, EveryCombination, testing::Range(0UL, 8UL));

}  // namespace
}  // namespace korvel::query
