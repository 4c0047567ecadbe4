#include "cli/output_formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "tests/cli/output_formats_fixture.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(OutputFormats, HaveNamesInAnyCaseOfLetters) {
  for (const OutputFormat& format : outputFormats()) EXPECT_EQ(outputFormatNamed(format.name), &format);
  EXPECT_EQ(outputFormatNamed("PDF"), outputFormatNamed("pdf"));
  EXPECT_EQ(outputFormatNamed("docx"), nullptr);
}

TEST_F(OutputFormats, AreWrittenWhileTheAnswerArrivesWhereTheyNeedNotKnowAllRows) {
  for (const char* name : {"text", "exchange", "csv", "json", "xlsx"})
    EXPECT_NE(outputFormatNamed(name)->stream, nullptr) << name;
  EXPECT_EQ(outputFormatNamed("table")->stream, nullptr) << "its widths are those of all rows";
}

TEST_F(OutputFormats, HtmlIsTheReportFileAndSaysWhatItDoesNotHold) {
  const test::ToolRun tool = run("html");
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_THAT(tool.out, StartsWith("<html>\r\n\r\n\r\n<head>\r\n"));
  EXPECT_THAT(tool.out, HasSubstr("<p align=\"center\">ALL Audits Audits</p>\r\n"));
  EXPECT_THAT(tool.out, HasSubstr("<td width=\"100\" height=\"26\">??? <b></td>\r\n"));
  EXPECT_THAT(tool.err, HasSubstr("stand as \"?\": 3"));
}

TEST_F(OutputFormats, JsonSaysWhichBytesItDoesNotHold) {
  auto whole = test::auditRow("6", "CS");
  auto broken = test::auditRow("7", "CS");
  broken[9] = "a\xFFz\xC3";
  broken[10] = "\xED\xA0\x80";
  server.answer = {{test::auditFields(), {whole, broken}, {}}};
  const std::string note =
      "note: values with bytes that are no text, which stand as U+FFFD: 2; the first one in row 2, column 10";
  const test::ToolRun queried = run("json");
  EXPECT_EQ(queried.status, exitDone);
  EXPECT_THAT(queried.out, HasSubstr("a\uFFFDz\uFFFD"));
  EXPECT_THAT(queried.err, HasSubstr(note));
  const test::ToolRun streamed = test::runTool({"sql", "q", "--format", "json"}, server.connector());
  EXPECT_EQ(streamed.status, exitDone);
  EXPECT_THAT(streamed.err, HasSubstr(note));
  EXPECT_THAT(streamed.err, Not(HasSubstr("column names")));
}

TEST_F(OutputFormats, JsonSaysThatAColumnNameIsNoText) {
  server.answer = {{{{"n\xFF"}}, {{"fine"}}, {}}};
  const test::ToolRun tool = test::runTool({"sql", "q", "--format", "json"}, server.connector());
  EXPECT_THAT(tool.err, HasSubstr("note: column names have bytes that are no text; each stands as U+FFFD"));
  EXPECT_THAT(tool.err, Not(HasSubstr("values")));
}

TEST_F(OutputFormats, JsonOfWholeTextsSaysNothing) {
  const test::ToolRun tool = run("json");
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_THAT(tool.err, Not(HasSubstr("note:")));
}

}  // namespace
}  // namespace korvel::cli
