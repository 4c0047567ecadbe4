#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {

/// Runs `query` against a scripted server with four records.
struct QueryCommand : testing::Test {
  QueryCommand() {
    server.answer = {{test::auditFields(),
                      {test::auditRow("10", "CS"), test::auditRow("9", "RT"), test::auditRow("100", "CS"),
                       test::auditRow("11", "ZZ")},
                      {}}};
  }

  test::ToolRun run(std::vector<std::string> options) {
    options.insert(options.begin(), "query");
    return test::runTool(options, server.connector());
  }

  /// The entry numbers that are written with these options, in order.
  std::string numbers(std::vector<std::string> options) {
    options.insert(options.end(), {"--format", "json"});
    std::string text;
    for (const nlohmann::json& record : nlohmann::json::parse(run(options).out))
      text += record["Nr"].get<std::string>() + ' ';
    return text;
  }

  test::ScriptedServer server;
  test::TemporaryFolder folder;
};

}  // namespace korvel::cli
