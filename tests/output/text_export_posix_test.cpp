#include "output/text_export.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/whole_file.h"
#include "output/windows_error.h"
#include "tests/support/filled_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {
namespace {

namespace fs = std::filesystem;
using test::filledList;

struct TextExportFileOfPosix : testing::Test {
  std::string text(const results::ResultList& list) {
    replaced = writeTextExport(list, file);
    return readWholeFile(file);
  }
  int failureOf(const results::ResultList& list, const fs::path& path) {
    try {
      writeTextExport(list, path);
      return 0;
    } catch (const Error& error) {
      description = error.description();
      return error.number();
    }
  }
  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
  }

  test::TemporaryFolder folder;
  fs::path file = folder / textExportName;
  std::size_t replaced = 0;
  std::string description;
  results::ResultList abc = filledList({{"A"}, {"B"}, {"C"}}, {{"a", "b", "c"}});
};

TEST_F(TextExportFileOfPosix, ReplacesALinkInItsPlace) {
  writeWholeFile(folder / "victim", "untouched");
  fs::create_symlink("victim", file);
  EXPECT_EQ(text(abc), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(readWholeFile(folder / "victim"), "untouched");
  EXPECT_FALSE(fs::is_symlink(file));
}

TEST_F(TextExportFileOfPosix, OnAFullDiskLeavesTheEarlierOne) {
  writeWholeFile(file, "earlier");
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 4096;
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &small);
  const int number = failureOf(filledList({{"A"}}, {{std::string(100000, 'x')}}), file);
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(number, errorDiskFull);
  EXPECT_EQ(description, "Disk full");
  EXPECT_EQ(readWholeFile(file), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
}

}  // namespace
}  // namespace korvel::output
