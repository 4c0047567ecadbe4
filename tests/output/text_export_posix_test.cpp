#include "output/text_export.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "tests/output/text_export_fixture.h"
#include "tests/support/filled_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using test::filledList;

TEST_F(TextExportFile, ReplacesALinkInItsPlace) {
  writeFileAtomically(folder / "victim", "untouched");
  fs::create_symlink("victim", file);
  EXPECT_EQ(text(abc), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(readFile(folder / "victim"), "untouched");
  EXPECT_FALSE(fs::is_symlink(file));
}

TEST_F(TextExportFile, OnAFullDiskLeavesTheEarlierOne) {
  writeFileAtomically(file, "earlier");
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 4096;
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &small);
  const int number = failureOf(filledList({{"A"}}, {{std::string(100000, 'x')}}), file);
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(number, numberOf(FileError::diskFull));
  EXPECT_EQ(description, "Disk full");
  EXPECT_EQ(readFile(file), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
}

}  // namespace
}  // namespace korvel::output
