#include "cli/sql_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <nlohmann/json.hpp>
#include <streambuf>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "query/query_file.h"
#include "tests/cli/sql_command_fixture.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/program_output.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::SignalSetting;
using test::ToolRun;

TEST_F(SqlCommand, NeverReplacesItsOwnQueryFile) {
  writeFileAtomically(folder / "q.vqf", "select 1");
  std::filesystem::create_symlink("q.vqf", folder / "link");
  for (const char* name : {"q.vqf", "link"}) {
    const ToolRun tool = run({"--file", file("q.vqf"), "--output", file(name)});
    EXPECT_EQ(tool.status, exitWrongUsage);
    EXPECT_NE(tool.err.find("is the query file itself"), std::string::npos) << tool.err;
  }
  EXPECT_EQ(readFile(folder / "q.vqf"), "select 1");
}

TEST_F(SqlCommand, WritesOnlyTheFirstResultSet) {
  server.answer.push_back({{{"Other"}}, {{"1"}}, {}});
  for (const std::string& format : allFormats)
    EXPECT_EQ(run({"q", "--format", format}).out.find("Other"), std::string::npos) << format;
  ASSERT_EQ(run({"q", "--format", "xlsx", "--output", file("out.xlsx")}).status, exitDone);
  EXPECT_EQ(test::outputOf("unzip -p '" + file("out.xlsx") + "'").find("Other"), std::string::npos);
}

TEST_F(SqlCommand, StoppedHalfWayLeavesFilesAsTheyWere) {
  writeFileAtomically(folder / "out", "earlier");
  server.answer[0].rows.assign(100'000, {"1", "x", "y"});
  // As a shell starts background processes: the test must not depend on it.
  const SignalSetting ignored(SIGINT, SIG_IGN);
  const SignalSetting heard(SIGINT, SIG_DFL);
  server.refusesExecution = [] { std::raise(SIGINT); };
  for (const std::string& format : allFormats) {
    server.rowsOffered = 0;
    const ToolRun tool = run({"q", "--format", format, "--output", file("out")});
    EXPECT_EQ(tool.status, exitStopped) << format;
    EXPECT_EQ(tool.err, "korvel-audit: stopped\n");
    const bool streamed = std::count(streamedFormats.begin(), streamedFormats.end(), format) > 0;
    EXPECT_TRUE(!streamed || server.rowsOffered < 100) << format;
  }
  EXPECT_EQ(readFile(folder / "out"), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
  server.refusesExecution = {};
  EXPECT_EQ(run({"q", "--format", "csv"}).status, exitDone);
}

TEST_F(SqlCommand, PagesShowTheAnswer) {
  ASSERT_EQ(run({"q", "--format", "pdf", "--output", file("out.pdf")}).status, exitDone);
  const std::string text = test::outputOf("pdftotext -layout '" + file("out.pdf") + "' - | tr -s ' \\n' ' '");
  for (const char* part : {"Custom", "Nr", "10", "a,b", "Page 1 of 1", "Query (SQL) q",
                           // That of "q".
                           "8e35c2cd3bf6641bdb0e2050b76932cbb2e6034a0ddacc1d9bea82a6ba57f7cf"})
    EXPECT_NE(text.find(part), std::string::npos) << part << text;
}

TEST_F(SqlCommand, AWorkbookCarriesTypesColumnsAndLosses) {
  server.answer[0].fields = {{"Nr", db::ColumnKind::number}, {"Text"}, {"Text"}};
  server.answer[0].rows.push_back({"11", std::string("\xFF"), "=1"});
  const ToolRun tool = run({"q", "--format", "xlsx", "--output", file("out.xlsx")});
  ASSERT_EQ(tool.status, exitDone) << tool.err;
  EXPECT_NE(tool.err.find("the first one in row 3, column 2, has bytes that are no text"), std::string::npos);
  const std::string sheet = test::outputOf("unzip -p '" + file("out.xlsx") + "' xl/worksheets/sheet1.xml");
  EXPECT_NE(sheet.find("<c r=\"A2\"><v>10</v></c>"), std::string::npos) << sheet;
  EXPECT_NE(sheet.find("<c r=\"C4\" t=\"inlineStr\"><is><t>=1</t>"), std::string::npos) << sheet;
  EXPECT_NE(test::outputOf("unzip -p '" + file("out.xlsx") + "' xl/workbook.xml").find("name=\"Custom\""),
            std::string::npos);
}

TEST_F(SqlCommand, AWorkbookThatCannotBeKeptIsAFailureOfTheOutput) {
  const test::EnvironmentVariable noPlace("TMPDIR", (folder / "absent").string());
  const ToolRun tool = run({"q", "--format", "xlsx", "--output", file("out.xlsx")});
  EXPECT_EQ(tool.status, exitOutput) << tool.err;
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SqlCommand, EveryRequestToEndStopsIt) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const SignalSetting heard(signal, SIG_DFL);
    server.refusesExecution = [signal] { std::raise(signal); };
    EXPECT_EQ(run({"q", "--format", "csv", "--output", file("out")}).status, exitStopped) << signal;
  }
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SqlCommand, WhatItWasStartedToIgnoreDoesNotStopIt) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const SignalSetting ignored(signal, SIG_IGN);
    server.refusesExecution = [signal] { std::raise(signal); };
    EXPECT_EQ(run({"q", "--format", "csv"}).status, exitDone) << signal;
  }
}

TEST_F(SqlCommand, StoppedWhileItIsWrittenLeavesNoFile) {
  const SignalSetting heard(SIGINT, SIG_DFL);
  server.onClose = [] { std::raise(SIGINT); };
  for (const std::string& format : allFormats) {
    const ToolRun tool = run({"q", "--format", format, "--output", file("out")});
    EXPECT_EQ(tool.status, exitStopped) << format;
    EXPECT_EQ(tool.err, "korvel-audit: stopped\n") << format;
  }
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SqlCommand, WhatIsNoTextIsRefusedOnATerminal) {
  const test::Terminal terminal;
  for (const std::string& format : formatsThat([](const OutputFormat& f) { return f.isBinary; })) {
    const ToolRun tool = run({"q", "--format", format, "--output", terminal.name()});
    EXPECT_EQ(tool.status, exitWrongUsage) << format;
    EXPECT_NE(tool.err.find(format + " is nothing for a terminal"), std::string::npos) << tool.err;
  }
  EXPECT_TRUE(server.opened.empty());
}

}  // namespace
}  // namespace korvel::cli
