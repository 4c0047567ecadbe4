#include "db/odbc/driver_versions.h"

#include <gtest/gtest.h>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db::odbc {
namespace {

TEST(DriverVersions, AreReadWhereTheMakersHaveWrittenThem) {
  const test::TemporaryFolder folder;
  const auto versionOf = [&](const std::string& bytes) {
    writeFileAtomically(folder / "driver", bytes);
    return versionInFile(utf8FromPath(folder / "driver"));
  };
  EXPECT_EQ(versionOf(std::string("\0\1code\0freetds v1.3.17\0more", 27)), "1.3.17");
  EXPECT_EQ(versionOf("freetds v1.4"), "1.4");
  EXPECT_EQ(versionOf("another driver, version 18.3"), "");
  EXPECT_EQ(versionOf(""), "");
  EXPECT_EQ(versionInFile(utf8FromPath(folder / "no such driver")), "");
}

TEST(DriverVersions, TheDriverManagerTellsItsOwn) {
  const std::string version = driverManagerVersion();
  EXPECT_NE(version.find('.'), std::string::npos) << version;
}

}  // namespace
}  // namespace korvel::db::odbc
