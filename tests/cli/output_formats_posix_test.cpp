#include "cli/output_formats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QString>
#include <string>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "cli/pdf_output.h"
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

TEST_F(OutputFormats, PdfSaysWhenItWasPrinted) {
  // A minute that is no month, and a month that is no minute.
  EXPECT_EQ(printedAt(QDateTime(QDate(2026, 11, 22), QTime(4, 49, 7))), "Printed 2026-11-22 04:49:07");
  const std::string file = (folder / "out.pdf").string();
  const QString before = printedAt(QDateTime::currentDateTime());
  ASSERT_EQ(run("pdf", file).status, exitDone);
  const QString after = printedAt(QDateTime::currentDateTime());
  const QString text = QString::fromStdString(test::outputOf("pdftotext -raw '" + file + "' -"));
  const QString mark = text.mid(text.indexOf("Printed "), before.size());
  EXPECT_LE(before, mark);
  EXPECT_LE(mark, after);
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
