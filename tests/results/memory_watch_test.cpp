#include "results/memory_watch.h"

#include <gtest/gtest.h>

#include "base/error.h"

namespace korvel::results {
namespace {

constexpr std::uint64_t megabyte = std::uint64_t{1} << 20U;
constexpr std::uint64_t whole = 16384 * megabyte;

/// A watch over a machine with memory that the test sets.
struct MemoryWatchTest : testing::Test {
  std::optional<MemoryState> state = MemoryState{whole / 2, whole};
  int looks = 0;
  MemoryWatch watch{[this] {
    ++looks;
    return state;
  }};

  bool grows(std::size_t bytes) {
    try {
      watch.grown(bytes);
      return true;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), outOfMemoryNumber);
      EXPECT_EQ(error.textKey(), "query.memoryShort");
      return false;
    }
  }
  bool works() {
    try {
      watch.engineAtWork();
      return true;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), outOfMemoryNumber);
      return false;
    }
  }
};

TEST_F(MemoryWatchTest, KeepsASixteenthWithinBounds) {
  EXPECT_EQ(MemoryWatch::reserveOf(4096 * megabyte), 256 * megabyte);
  EXPECT_EQ(MemoryWatch::reserveOf(256 * megabyte), 64 * megabyte);
  EXPECT_EQ(MemoryWatch::reserveOf(1024 * 1024 * megabyte), 512 * megabyte);
}

TEST_F(MemoryWatchTest, LooksEverySixteenMegabytes) {
  for (int i = 0; i < 64; ++i) EXPECT_TRUE(grows(megabyte));
  EXPECT_EQ(looks, 4);
  EXPECT_TRUE(grows(100 * megabyte));
  EXPECT_EQ(looks, 5);
}

TEST_F(MemoryWatchTest, EndsAtTheReserve) {
  state->freeBytes = 512 * megabyte;
  EXPECT_TRUE(grows(16 * megabyte));
  --state->freeBytes;
  EXPECT_FALSE(grows(16 * megabyte));
}

TEST_F(MemoryWatchTest, EndsNothingWhereTheSystemDoesNotTell) {
  state.reset();
  EXPECT_TRUE(grows(1000 * megabyte));
  EXPECT_TRUE(works());
}

TEST_F(MemoryWatchTest, AnEngineMayNotTakeTheReserve) {
  EXPECT_TRUE(works());
  state->freeBytes = 0;
  EXPECT_FALSE(works());
}

TEST_F(MemoryWatchTest, AnEngineIsNotBlamedForWhatWasMissingBefore) {
  state->freeBytes = 0;
  EXPECT_TRUE(works());
  EXPECT_TRUE(works());
}

}  // namespace
}  // namespace korvel::results
