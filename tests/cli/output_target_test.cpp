#include "cli/output_target.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>
#include <stdexcept>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"
#include "db/embedded/embedded_folder.h"
#include "tests/cli/output_target_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

TEST_F(OutputTarget, DashIsStandardOutput) {
  write("-");
  EXPECT_EQ(out.str(), "one two");
}

TEST_F(OutputTarget, FileIsReplacedWhole) {
  const fs::path file = folder / "file";
  write(file.string());
  EXPECT_EQ(readFile(file), "one two");
  writeFileAtomically(file, "a longer text than the new one");
  write(file.string());
  EXPECT_EQ(readFile(file), "one two");
  EXPECT_EQ(out.str(), "");
}

TEST_F(OutputTarget, FailureOnTheWayLeavesTheFileAsItWas) {
  const fs::path file = folder / "file";
  writeFileAtomically(file, "earlier");
  EXPECT_THROW(writeTo(file.string(), out,
                       [](const output::ByteSink& sink) {
                         sink(std::string(1U << 20U, 'x'));
                         throw std::runtime_error("gone");
                       }),
               std::runtime_error);
  EXPECT_EQ(readFile(file), "earlier");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1)
      << "a temporary file is left";
}

TEST_F(OutputTarget, FoldersAndMissingOnesAreFailures) {
  EXPECT_EQ(failureOf(folder.path().string()), systemErrorNumber(std::errc::is_a_directory));
  EXPECT_TRUE(isSystemError(failureOf((folder / "absent" / "file").string()), std::errc::no_such_file_or_directory));
}

TEST_F(OutputTarget, RecognisesADatabaseByItsFirstBytes) {
  writeFileAtomically(folder / "database", std::string("SQLite format 3\0", 16));
  writeFileAtomically(folder / "text", "SQLite format 3 is described here");
  writeFileAtomically(folder / "empty", "");
  EXPECT_TRUE(isDatabaseFile(folder / "database"));
  for (const char* name : {"text", "empty", "absent", "."}) EXPECT_FALSE(isDatabaseFile(folder / name)) << name;
}

}  // namespace
}  // namespace korvel::cli
