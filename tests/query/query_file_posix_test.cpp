#include "query/query_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "base/atomic_file.h"
#include "settings/string_table.h"
#include "tests/query/query_file_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

TEST_F(QueryFile, NeverReplacesADatabase) {
  const std::string bytes("SQLite format 3\0and pages", 25);
  writeFileAtomically(folder / "Korvel_Audit.db", bytes);
  std::filesystem::create_symlink(folder / "Korvel_Audit.db", file);
  EXPECT_EQ(errorOf([&] { saveQueryFile(file, "x"); }).textKey(), "queryFile.isDatabase");
  EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), bytes);
}

TEST_F(QueryFile, ThatCannotBeReadIsReported) {
  const auto reading = [&] { return errorOf([&] { (void)loadQueryFile(file); }); };
  EXPECT_EQ(reading().number(), ENOENT);
  EXPECT_EQ(reading().textKey(), "queryFile.unreadable");
  std::filesystem::create_directory(file);
  EXPECT_EQ(reading().number(), EISDIR);
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(reading().number(), EINVAL);
  std::filesystem::remove(file);
  std::filesystem::create_symlink(file, file);
  EXPECT_EQ(reading().number(), ELOOP);
  std::filesystem::remove(file);
  if (::geteuid() == 0) return;  // who may read everything
  writeFileAtomically(file, "x");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  EXPECT_EQ(reading().number(), EACCES);
}

}  // namespace
}  // namespace korvel::query
