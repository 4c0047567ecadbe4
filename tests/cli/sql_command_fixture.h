#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/output_formats.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {

/// Runs `sql` against a scripted server with two records.
struct SqlCommand : testing::Test {
  SqlCommand() {
    server.answer = {{{{"Nr"}, {"Text"}, {"Text"}}, {{"10", " a,b ", std::nullopt}, {"9", "", "\"x\"\r\n|"}}, {}}};
  }

  test::ToolRun run(std::vector<std::string> options) {
    options.insert(options.begin(), "sql");
    return test::runTool(options, server.connector());
  }
  std::string file(const char* name) const { return (folder / name).string(); }
  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
  }

  test::ScriptedServer server;
  test::TemporaryFolder folder;
};

inline std::vector<std::string> formatsThat(bool (*are)(const OutputFormat& format)) {
  std::vector<std::string> names;
  for (const OutputFormat& format : outputFormats())
    if (are(format)) names.emplace_back(format.name);
  return names;
}
inline const std::vector<std::string> allFormats = formatsThat([](const OutputFormat&) { return true; });
inline const std::vector<std::string> streamedFormats =
    formatsThat([](const OutputFormat& f) { return f.stream != nullptr; });
/// The formats that are written while rows arrive; a workbook is put together at the end.
inline const std::vector<std::string> flowingFormats = {"csv", "json", "text", "exchange"};

}  // namespace korvel::cli
