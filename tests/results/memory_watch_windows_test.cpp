#include <gtest/gtest.h>

#include "results/memory_watch.h"

namespace korvel::results {
namespace {

TEST(FreeMemory, OfThisMachineIsKnown) {
  const auto state = memoryState();
  ASSERT_TRUE(state);
  EXPECT_GT(state->freeBytes, 0U);
  EXPECT_GE(state->wholeBytes, state->freeBytes);
}

}  // namespace
}  // namespace korvel::results
