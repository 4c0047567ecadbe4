#include <gtest/gtest.h>
#include <windows.h>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "demo/demo_database.h"
#include "tests/support/locked_file_windows.h"
#include "tests/support/temporary_folder.h"

namespace korvel::demo {
namespace {

TEST(DemoOnWindows, ReplacesNeitherWhereAProgramReadsOne) {
  const test::TemporaryFolder folder;
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-wal", "Korvel_Audit_MU.db"})
    writeFileAtomically(folder / name, "old");
  {
    // As an engine that reads it has it open.
    const test::LockedFile held(folder / "Korvel_Audit_MU.db", FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(held.isLocked());
    try {
      writeDemoDatabases({.folder = folder.path(), .rows = 10, .force = true});
      ADD_FAILURE() << "replaced what is in use";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), ERROR_SHARING_VIOLATION);
      EXPECT_NE(error.description().find("Korvel_Audit_MU.db"), std::string::npos) << error.description();
    }
  }
  for (const char* name : {"Korvel_Audit.db", "Korvel_Audit.db-wal", "Korvel_Audit_MU.db"})
    EXPECT_EQ(readFile(folder / name), "old") << name;
}

}  // namespace
}  // namespace korvel::demo
