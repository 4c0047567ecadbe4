#include "cli/output_formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/whole_file.h"
#include "cli/exit_status.h"
#include "tests/cli/output_formats_fixture.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(OutputFormats, HaveNamesInAnyCaseOfLetters) {
  for (const OutputFormat& format : outputFormats()) EXPECT_EQ(outputFormatNamed(format.name), &format);
  EXPECT_EQ(outputFormatNamed("PDF"), outputFormatNamed("pdf"));
  EXPECT_EQ(outputFormatNamed("docx"), nullptr);
}

TEST_F(OutputFormats, HtmlIsTheReportFileAndSaysWhatItDoesNotHold) {
  const test::ToolRun tool = run("html");
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_THAT(tool.out, StartsWith("<html>\r\n\r\n\r\n<head>\r\n"));
  EXPECT_THAT(tool.out, HasSubstr("<p align=\"center\">ALL Audits Audits</p>\r\n"));
  EXPECT_THAT(tool.out, HasSubstr("<td width=\"100\" height=\"26\">??? <b></td>\r\n"));
  EXPECT_THAT(tool.err, HasSubstr("stand as \"?\": 3"));
}

}  // namespace
}  // namespace korvel::cli
