#include "cli/demo_command.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::runTool;
using test::ToolRun;

struct DemoCommand : testing::Test {
  test::TemporaryFolder folder;
  std::string at = folder.path().string();
};

TEST_F(DemoCommand, WritesBothDatabasesAndNamesThem) {
  const ToolRun tool = runTool({"demo", "--folder", at, "--rows", "200"});
  EXPECT_EQ(tool.status, exitDone) << tool.err;
  EXPECT_EQ(tool.out, (folder / "Korvel_Audit.db").string() + "\n" + (folder / "Korvel_Audit_MU.db").string() + "\n");
  EXPECT_TRUE(std::filesystem::exists(folder / "Korvel_Audit.db"));
  EXPECT_TRUE(std::filesystem::exists(folder / "Korvel_Audit_MU.db"));
}

TEST_F(DemoCommand, UsesTheEmbeddedFolderWithoutAnother) {
  const test::EnvironmentVariable data("KORVEL_AUDIT_DATA", (folder / "data").string());
  EXPECT_EQ(runTool({"demo", "--rows", "50"}).status, exitDone);
  EXPECT_TRUE(std::filesystem::exists(folder / "data/Korvel_Audit.db"));
  EXPECT_EQ(runTool({"query"}).status, exitDone);
}

TEST_F(DemoCommand, KeepsWhatIsThereWithoutForce) {
  ASSERT_EQ(runTool({"demo", "--folder", at, "--rows", "50"}).status, exitDone);
  const std::string before = readFile(folder / "Korvel_Audit.db");
  const ToolRun refused = runTool({"demo", "--folder", at, "--rows", "60", "--seed", "2"});
  EXPECT_EQ(refused.status, exitOutput);
  EXPECT_NE(refused.err, "");
  EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), before);
  EXPECT_EQ(runTool({"demo", "--folder", at, "--rows", "60", "--seed", "2", "--force"}).status, exitDone);
  EXPECT_NE(readFile(folder / "Korvel_Audit.db"), before);
}

TEST_F(DemoCommand, FolderThatCannotBeMadeIsReported) {
  writeFileAtomically(folder / "file", "x");
  const ToolRun tool = runTool({"demo", "--folder", (folder / "file/below").string(), "--rows", "10"});
  EXPECT_EQ(tool.status, exitOutput);
  EXPECT_NE(tool.err.find("korvel-audit: error "), std::string::npos) << tool.err;
}

/// The tool's databases, read through the embedded engine.
struct DemoQuery : DemoCommand {
  DemoQuery() { EXPECT_EQ(runTool({"demo", "--folder", at, "--rows", "600"}).status, exitDone); }

  ToolRun query(std::vector<std::string> options) {
    options.insert(options.begin(), {"query", "--server", at});
    return runTool(options);
  }
};

TEST_F(DemoQuery, AnswersFromARealDatabase) {
  const ToolRun tool = query({"--format", "json"});
  ASSERT_EQ(tool.status, exitDone) << tool.err;
  const json records = json::parse(tool.out);
  EXPECT_EQ(records.size(), 600U);
  for (const json& record : records) ASSERT_EQ(record.size(), 18U);
  EXPECT_NE(tool.err.find("list 0 (ALL Audits): 600 records\n"), std::string::npos) << tool.err;
}

TEST_F(DemoQuery, CategoryBringsOnlyItsOwnRecords) {
  const ToolRun tool = query({"--category", "CheckIN", "--list", "3", "--format", "json"});
  ASSERT_EQ(tool.status, exitDone) << tool.err;
  for (const json& record : json::parse(tool.out)) {
    EXPECT_EQ(record["AuditType"], "DC");
    EXPECT_EQ(record["EventType"], "CHECK_IN");
  }
}

TEST_F(DemoQuery, OtherDatabaseHoldsOtherRecords) {
  const ToolRun audit = query({"--format", "csv"});
  const ToolRun mu = query({"--database", "Korvel_Audit_MU", "--format", "csv"});
  EXPECT_EQ(mu.status, exitDone) << mu.err;
  EXPECT_NE(audit.out, mu.out);
}

TEST_F(DemoQuery, DayWithoutAuditsHasNoRecords) {
  const ToolRun tool = query({"--category", "R1", "--from", "1999-01-01", "--to", "1999-01-01"});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_EQ(tool.err, "korvel-audit: No records found for filter criteria\n");
}

TEST_F(DemoQuery, MissingDatabaseIsADatabaseFailure) {
  const ToolRun tool = query({"--database", "Nothing"});
  EXPECT_EQ(tool.status, exitDatabase);
  EXPECT_EQ(tool.out, "");
  EXPECT_NE(tool.err.find("korvel-audit: database error "), std::string::npos) << tool.err;
}

TEST_F(DemoQuery, DamagedFileIsADatabaseFailure) {
  writeFileAtomically(folder / "Broken.db", "this is no database, however long it is read");
  const ToolRun tool = query({"--database", "Broken"});
  EXPECT_EQ(tool.status, exitDatabase);
  EXPECT_NE(tool.err.find("korvel-audit: database error "), std::string::npos) << tool.err;
}

TEST_F(DemoQuery, LeavesTheDatabaseAsItIs) {
  const std::string before = readFile(folder / "Korvel_Audit.db");
  query({});
  query({"--output", (folder / "Korvel_Audit.db").string()});
  EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), before);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator()),
            2);
}

}  // namespace
}  // namespace korvel::cli
