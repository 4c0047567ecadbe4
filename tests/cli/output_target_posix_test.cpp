#include "cli/output_target.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>
#include <stdexcept>

#include "base/atomic_file.h"
#include "base/error.h"
#include "tests/cli/output_target_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

TEST_F(OutputTarget, DeviceIsWrittenThroughAndStays) {
  ASSERT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(failureOf("/dev/null"), 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(failureOf("/dev/full"), ENOSPC);
}

TEST_F(OutputTarget, FailuresCarryTheNumberOfTheSystem) {
  EXPECT_EQ(failureOf(folder.path().string()), EISDIR);
  EXPECT_EQ(failureOf((folder / "absent/file").string()), ENOENT);
  writeFileAtomically(folder / "file", "x");
  EXPECT_EQ(failureOf((folder / "file/below").string()), ENOTDIR);
}

}  // namespace
}  // namespace korvel::cli
