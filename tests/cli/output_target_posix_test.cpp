#include "cli/output_target.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>
#include <stdexcept>

#include "base/error.h"
#include "base/whole_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

struct OutputTargetOfPosix : testing::Test {
  void write(const std::string& target) {
    writeTo(target, out, [](const output::ByteSink& sink) {
      sink("one ");
      sink("two");
    });
  }

  /// The number of the failure to write there, 0 for none.
  int failureOf(const std::string& target) {
    try {
      write(target);
      return 0;
    } catch (const Error& error) {
      return error.number();
    }
  }

  std::ostringstream out;
  test::TemporaryFolder folder;
};

TEST_F(OutputTargetOfPosix, DeviceIsWrittenThroughAndStays) {
  ASSERT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(failureOf("/dev/null"), 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ(failureOf("/dev/full"), ENOSPC);
}

TEST_F(OutputTargetOfPosix, FailuresCarryTheNumberOfTheSystem) {
  EXPECT_EQ(failureOf(folder.path().string()), EISDIR);
  EXPECT_EQ(failureOf((folder / "absent/file").string()), ENOENT);
  writeWholeFile(folder / "file", "x");
  EXPECT_EQ(failureOf((folder / "file/below").string()), ENOTDIR);
}

}  // namespace
}  // namespace korvel::cli
