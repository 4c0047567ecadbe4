#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {

struct OutputFormats : testing::Test {
  OutputFormats() {
    auto row = test::auditRow("7", "CS");
    row[9] = "ポンプ <b>";
    row[16] = "=1+1";
    server.answer = {{test::auditFields(), {row}, {}}};
  }
  test::ToolRun run(const std::string& format, const std::string& output = "-") {
    return test::runTool({"query", "--format", format, "--output", output}, server.connector());
  }

  test::ScriptedServer server;
  test::TemporaryFolder folder;
};

}  // namespace korvel::cli
