#include "cli/query_command.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "base/whole_file.h"
#include "cli/exit_status.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::auditRow;
using test::ToolRun;

/// Runs `query` against a scripted server with four records.
struct QueryCommandOfPosix : testing::Test {
  QueryCommandOfPosix() {
    server.answer = {{test::auditFields(),
                      {auditRow("10", "CS"), auditRow("9", "RT"), auditRow("100", "CS"), auditRow("11", "ZZ")},
                      {}}};
  }

  ToolRun run(std::vector<std::string> options) {
    options.insert(options.begin(), "query");
    return test::runTool(options, server.connector());
  }

  /// The entry numbers that are written with these options, in order.
  std::string numbers(std::vector<std::string> options) {
    options.insert(options.end(), {"--format", "json"});
    std::string text;
    for (const json& record : json::parse(run(options).out)) text += record["Nr"].get<std::string>() + ' ';
    return text;
  }

  test::ScriptedServer server;
  test::TemporaryFolder folder;
};

TEST_F(QueryCommandOfPosix, NeverReplacesADatabase) {
  const std::string bytes("SQLite format 3\0and pages", 25);
  writeWholeFile(folder / "Korvel_Audit.db", bytes);
  std::filesystem::create_symlink(folder / "Korvel_Audit.db", folder / "link");
  for (const char* name : {"Korvel_Audit.db", "link"}) {
    const ToolRun tool = run({"--output", (folder / name).string()});
    EXPECT_EQ(tool.status, exitWrongUsage) << name;
    EXPECT_EQ(readWholeFile(folder / "Korvel_Audit.db"), bytes);
  }
  EXPECT_TRUE(server.opened.empty());
}

}  // namespace
}  // namespace korvel::cli
