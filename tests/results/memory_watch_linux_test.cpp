#include <gtest/gtest.h>

#include "base/atomic_file.h"
#include "results/memory_watch_linux.h"
#include "tests/support/temporary_folder.h"

namespace korvel::results {
namespace {

/// The system's files, as a test has them.
struct FreeMemory : testing::Test {
  FreeMemory() { file("proc/meminfo", "MemTotal:  1000 kB\nMemFree:  1 kB\nMemAvailable:    600 kB\nBuffers: 3 kB\n"); }

  void file(const std::filesystem::path& name, const std::string& content) const {
    std::filesystem::create_directories((root / name).parent_path());
    writeFileAtomically(root / name, content);
  }
  void expect(std::uint64_t freeBytes, std::uint64_t wholeBytes) const {
    const auto state = memoryStateBelow(root.path());
    ASSERT_TRUE(state);
    EXPECT_EQ(state->freeBytes, freeBytes);
    EXPECT_EQ(state->wholeBytes, wholeBytes);
  }

  test::TemporaryFolder root;
};

TEST_F(FreeMemory, IsTheMachinesWithoutGroups) {
  expect(600 * 1024, 1000 * 1024);
}

TEST_F(FreeMemory, IsTheGroupsWhereThatIsLess) {
  file("proc/self/cgroup", "0::/user.slice/app\n");
  file("sys/fs/cgroup/user.slice/app/memory.max", "500000\n");
  file("sys/fs/cgroup/user.slice/app/memory.current", "400000\n");
  file("sys/fs/cgroup/user.slice/app/memory.stat", "anon 1\ninactive_file 150000\nactive_file 5\n");
  expect(250000, 500000);
  file("sys/fs/cgroup/user.slice/app/memory.current", "700000\n");
  expect(0, 500000);
}

TEST_F(FreeMemory, IsBoundByTheGroupsAbove) {
  file("proc/self/cgroup", "0::/user.slice/app\n");
  file("sys/fs/cgroup/user.slice/app/memory.max", "max\n");
  file("sys/fs/cgroup/user.slice/app/memory.current", "400000\n");
  file("sys/fs/cgroup/user.slice/memory.max", "300000\n");
  file("sys/fs/cgroup/user.slice/memory.current", "100000\n");
  expect(200000, 300000);
}

TEST_F(FreeMemory, ReadsTheFirstVersionOfGroups) {
  file("proc/self/cgroup", "9:name=systemd:/\n4:memory:/box/inner\n0::/\n");
  file("sys/fs/cgroup/memory/memory.limit_in_bytes", "9223372036854771712\n");
  file("sys/fs/cgroup/memory/memory.usage_in_bytes", "999999\n");
  file("sys/fs/cgroup/memory/box/inner/memory.limit_in_bytes", "500000\n");
  file("sys/fs/cgroup/memory/box/inner/memory.usage_in_bytes", "100000\n");
  file("sys/fs/cgroup/memory/box/inner/memory.stat", "inactive_file 7\ntotal_inactive_file 50000\n");
  expect(450000, 500000);
}

TEST_F(FreeMemory, IsUnknownWhereTheSystemDoesNotTell) {
  file("proc/meminfo", "MemTotal: lots\n");
  EXPECT_FALSE(memoryStateBelow(root.path()));
  EXPECT_FALSE(memoryStateBelow(root / "absent"));
}

TEST_F(FreeMemory, IsKnownOnThisMachine) {
  const auto state = memoryState();
  ASSERT_TRUE(state);
  EXPECT_GT(state->freeBytes, 0U);
  EXPECT_LE(state->freeBytes, state->wholeBytes);
}

}  // namespace
}  // namespace korvel::results
