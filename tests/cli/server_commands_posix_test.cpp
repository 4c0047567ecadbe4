#include <gtest/gtest.h>

#include <filesystem>

#include "base/atomic_file.h"
#include "demo/demo_database.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

/// A folder with a small demo database, separate settings, and no server.
class ServerCommandsOfPosix : public ::testing::Test {
 protected:
  void SetUp() override { demo::writeDemoDatabase(folder / "Korvel_Audit.db", 200, 1); }

  TemporaryFolder folder;
  EnvironmentVariable data{"KORVEL_AUDIT_DATA", folder.path().string()};
  EnvironmentVariable settings{"KORVEL_REGISTRY", (folder / "settings.reg").string()};
};

TEST_F(ServerCommandsOfPosix, AMissingWorkingFolderIsADatabaseFailure) {
  const auto before = std::filesystem::current_path();
  const EnvironmentVariable relative("KORVEL_AUDIT_DATA", "audit");
  const TemporaryFolder gone;
  std::filesystem::current_path(gone.path());
  std::filesystem::remove(gone.path());
  const ToolRun run = runTool({"databases", "--server", "(embedded)"});
  std::filesystem::current_path(before);
  EXPECT_EQ(run.status, 3) << run.err;
}

TEST_F(ServerCommandsOfPosix, TheHelpNamesEveryVariableAndTheGrant) {
  const std::string help = runTool({"--help"}).out;
  for (const char* variable : {"KORVEL_AUDIT_DATA", "KORVEL_REGISTRY", "KORVEL_ODBC_DRIVER"})
    EXPECT_NE(help.find(variable), std::string::npos) << variable;
  EXPECT_NE(runTool({"install-procedure", "--help"}).out.find("GRANT EXECUTE ON dbo.QueryAudits TO"),
            std::string::npos);
}

}  // namespace
}  // namespace korvel::test
