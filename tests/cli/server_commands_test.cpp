#include <gtest/gtest.h>

#include <filesystem>

#include "base/atomic_file.h"
#include "demo/demo_database.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

/// A folder with a small demo database, separate settings, and no server.
class ServerCommands : public ::testing::Test {
 protected:
  void SetUp() override { demo::writeDemoDatabase(folder / "Korvel_Audit.db", 200, 1); }

  TemporaryFolder folder;
  EnvironmentVariable data{"KORVEL_AUDIT_DATA", folder.path().string()};
  EnvironmentVariable settings{"KORVEL_REGISTRY", (folder / "settings.reg").string()};
};

TEST_F(ServerCommands, TheEmbeddedEngineIsAServerOfThisComputer) {
  const ToolRun run = runTool({"servers"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("(embedded)\n"), std::string::npos);
}

TEST_F(ServerCommands, DatabasesOfTheEmbeddedEngineWithTheirFiles) {
  const ToolRun run = runTool({"databases", "--server", "(embedded)"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "Korvel_Audit\t" + (folder / "Korvel_Audit.db").string() + "\n");
}

TEST_F(ServerCommands, AFolderWithoutDatabasesHasNoRecords) {
  const TemporaryFolder empty;
  EXPECT_EQ(runTool({"databases", "--server", empty.path().string()}).status, 1);
}

TEST_F(ServerCommands, AServerThatIsNotThereIsADatabaseFailure) {
  const ToolRun run = runTool({"databases", "--server", "127.0.0.1,1"});
  EXPECT_EQ(run.status, 3);
  EXPECT_NE(run.err.find("127.0.0.1"), std::string::npos) << run.err;
}

TEST_F(ServerCommands, AFileInPlaceOfAFolderIsReported) {
  const std::string file = (folder / "Korvel_Audit.db").string();
  const ToolRun noFolder = runTool({"databases", "--server", file});
  EXPECT_EQ(noFolder.status, 3);
  EXPECT_NE(noFolder.err.find(file + " is not a folder"), std::string::npos) << noFolder.err;
  const ToolRun missing = runTool({"databases", "--server", (folder / "nowhere").string()});
  EXPECT_NE(missing.err.find("does not exist"), std::string::npos) << missing.err;
}

TEST_F(ServerCommands, CheckGoesTheWholeWayOfTheEmbeddedEngine) {
  const ToolRun run = runTool({"check", "--server", "(embedded)", "--database", "Korvel_Audit"});
  EXPECT_EQ(run.status, 0) << run.out << run.err;
  EXPECT_EQ(run.out.find("failed"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("200 in the audit trail"), std::string::npos) << run.out;
}

TEST_F(ServerCommands, CheckNamesTheStepThatFailsAndThoseNotReached) {
  const ToolRun run = runTool({"check", "--server", "127.0.0.1,1", "--database", "Korvel_Audit"});
  EXPECT_EQ(run.status, 3);
  EXPECT_NE(run.out.find("failed"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("not reached"), std::string::npos) << run.out;
}

TEST_F(ServerCommands, PrintsTheProcedure) {
  const ToolRun run = runTool({"install-procedure", "--print"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, readFile(std::filesystem::path(KORVEL_SOURCE_DIR) / "sql" / "QueryAudits.sql"));
}

TEST_F(ServerCommands, InstallNeedsAServerAndADatabase) {
  EXPECT_EQ(runTool({"install-procedure"}).status, 2);
  EXPECT_EQ(runTool({"install-procedure", "--server", "S"}).status, 2);
}

TEST_F(ServerCommands, TheEmbeddedEngineTakesNoProcedure) {
  const ToolRun run = runTool({"install-procedure", "--server", "(embedded)", "--database", "Korvel_Audit"});
  EXPECT_EQ(run.status, 3);
  EXPECT_NE(run.err.find("nothing to install"), std::string::npos) << run.err;
}

TEST_F(ServerCommands, NamesThatWouldBreakTheConnectionStringAreRefused) {
  EXPECT_EQ(runTool({"check", "--server", "S;Database=x"}).status, 2);
  EXPECT_EQ(runTool({"check", "--server", "'S'"}).status, 2);
  EXPECT_EQ(runTool({"query", "--server", "S", "--database", "Korvel_Audit; Server=T"}).status, 2);
  EXPECT_EQ(runTool({"databases", "--server", "  "}).status, 2);
  EXPECT_EQ(runTool({"databases"}).status, 2);
}

}  // namespace
}  // namespace korvel::test
