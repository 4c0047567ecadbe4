#include "cli/output_formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "evidence/origin.h"
#include "tests/cli/output_formats_fixture.h"
#include "tests/support/audit_rows.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/program_output.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(OutputFormats, PdfShowsTheListAsStored) {
  const std::string file = (folder / "out.pdf").string();
  ASSERT_EQ(run("pdf", file).status, exitDone);
  const std::string text = test::outputOf("pdftotext -raw '" + file + "' -");
  EXPECT_THAT(text, HasSubstr("ALL Audits"));
  EXPECT_THAT(text, HasSubstr("ポンプ"));
  EXPECT_THAT(text, HasSubstr("<b>"));
  EXPECT_THAT(text, HasSubstr("Page 1 of 1"));
  EXPECT_THAT(run("pdf").out, StartsWith("%PDF-")) << "a pipe takes it too, and a second one can be made";
}

TEST_F(OutputFormats, PdfSaysWhoPrintedItAndWhen) {
  const std::string file = (folder / "out.pdf").string();
  const auto shownNow = [] {
    std::string time = evidence::localTimeText(std::chrono::system_clock::now());
    time.replace(time.find('T'), 1, " ");
    return time.insert(time.size() - 6, " ");
  };
  const std::string before = shownNow();
  ASSERT_EQ(run("pdf", file).status, exitDone);
  const std::string after = shownNow();
  std::string text = test::outputOf("pdftotext -raw '" + file + "' -");
  std::replace(text.begin(), text.end(), '\n', ' ');
  const std::size_t at = text.find("Printed ");
  ASSERT_NE(at, std::string::npos) << text;
  const std::string printed = text.substr(at + 8, before.size());
  EXPECT_LE(before, printed);
  EXPECT_LE(printed, after);
  for (const std::string& part :
       {"User: " + evidence::systemUser(), "Computer: " + evidence::computerName(), std::string("· korvel-audit ")})
    EXPECT_THAT(text, HasSubstr(part));
  const std::string about = test::outputOf("pdfinfo '" + file + "'");
  EXPECT_THAT(about, testing::ContainsRegex("Author: +" + evidence::systemUser() + "\n"));
  EXPECT_THAT(about, HasSubstr("complete: the limit of 5,000 records was not reached"));
}

TEST_F(OutputFormats, XlsxCarriesEveryColumn) {
  const std::string file = (folder / "out.xlsx").string();
  ASSERT_EQ(run("xlsx", file).status, exitDone);
  const std::string sheet = test::outputOf("unzip -p '" + file + "' xl/worksheets/sheet1.xml");
  EXPECT_THAT(sheet, HasSubstr("<c r=\"A2\"><v>7</v></c>"));
  EXPECT_THAT(sheet, HasSubstr("<c r=\"Q2\" t=\"inlineStr\"><is><t>=1+1</t>"));
}

TEST_F(OutputFormats, ThatAreNoTextAreRefusedOnATerminal) {
  const test::Terminal terminal;
  for (const char* format : {"pdf", "xlsx"}) {
    const test::ToolRun tool = run(format, terminal.name());
    EXPECT_EQ(tool.status, exitWrongUsage) << format;
    EXPECT_THAT(tool.err, HasSubstr("nothing for a terminal"));
  }
}

TEST_F(OutputFormats, ThatCannotBeWrittenSaySo) {
  for (const OutputFormat& format : outputFormats()) {
    const test::ToolRun tool = run(std::string(format.name), "/dev/full");
    EXPECT_EQ(tool.status, exitOutput) << format.name;
    EXPECT_THAT(tool.err, HasSubstr("No space left on device")) << format.name;
  }
}

}  // namespace
}  // namespace korvel::cli
