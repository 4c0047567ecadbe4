#include "cli/query_command.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "cli/output_formats.h"
#include "tests/cli/query_command_fixture.h"
#include "tests/support/audit_rows.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/program_output.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::auditRow;
using test::ToolRun;

TEST_F(QueryCommand, NeverReplacesADatabase) {
  const std::string bytes("SQLite format 3\0and pages", 25);
  writeFileAtomically(folder / "Korvel_Audit.db", bytes);
  std::filesystem::create_symlink(folder / "Korvel_Audit.db", folder / "link");
  for (const char* name : {"Korvel_Audit.db", "link"}) {
    const ToolRun tool = run({"--output", (folder / name).string()});
    EXPECT_EQ(tool.status, exitWrongUsage) << name;
    EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), bytes);
  }
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(QueryCommand, NamesASettingsFileThatIsNotUnderstood) {
  const std::string settings = (folder / "settings.reg").string();
  writeFileAtomically(settings, "not a registry");
  const test::EnvironmentVariable named("KORVEL_REGISTRY", settings);
  for (const char* command : {"query", "databases"}) {
    const ToolRun tool = test::runTool({command, "--server", "AUDITSRV"});
    EXPECT_EQ(tool.status, exitDatabase) << command;
    EXPECT_NE(tool.err.find("Could not open registry section. The settings file " + settings + " cannot be understood"),
              std::string::npos)
        << tool.err;
  }
  const ToolRun custom = test::runTool({"sql", "--server", "AUDITSRV", "select 1"});
  EXPECT_NE(custom.err.find(settings), std::string::npos) << custom.err;
}

TEST_F(QueryCommand, ThePagesTellOfAlarmRowsOfAllDates) {
  const std::string file = (folder / "out.pdf").string();
  const auto textWith = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"--format", "pdf", "--output", file});
    EXPECT_EQ(run(options).status, exitDone);
    return test::outputOf("pdftotext -raw '" + file + "' -");
  };
  const std::string remark = "come from all dates, whatever the date range";
  const std::vector<std::string> day = {"--from", "2004-03-07", "--to", "2004-03-07"};
  std::vector<std::string> alarms = {"--category", "Alarms"};
  EXPECT_EQ(textWith(alarms).find(remark), std::string::npos);
  alarms.insert(alarms.end(), day.begin(), day.end());
  EXPECT_NE(textWith(alarms).find(remark), std::string::npos);
  EXPECT_EQ(textWith(day).find(remark), std::string::npos);
  alarms.insert(alarms.end(), {"--list", "2"});
  EXPECT_EQ(textWith(alarms).find(remark), std::string::npos) << "no page of alarms";
}

TEST_F(QueryCommand, StoppedWhileItIsWrittenLeavesFilesAsTheyWere) {
  const test::SignalSetting heard(SIGINT, SIG_DFL);
  writeFileAtomically(folder / "out", "earlier");
  server.onClose = [] { std::raise(SIGINT); };
  for (const OutputFormat& format : outputFormats()) {
    const test::ToolRun tool =
        run({"--quiet", "--format", std::string(format.name), "--output", (folder / "out").string()});
    EXPECT_EQ(tool.status, exitStopped) << format.name;
    EXPECT_EQ(tool.err, "korvel-audit: stopped\n") << format.name;
    EXPECT_EQ(readFile(folder / "out"), "earlier") << format.name;
  }
}

TEST_F(QueryCommand, PagesSayWhetherTheAnswerIsComplete) {
  server.answer[0].rows.assign(db::rowLimitPerResult, test::auditRow("1", "CS"));
  const std::string file = (folder / "out.pdf").string();
  ASSERT_EQ(run({"--complete", "--format", "pdf", "--output", file}).status, exitDone);
  EXPECT_NE(test::outputOf("pdftotext -l 1 -raw '" + file + "' -")
                .find("complete: completed beyond the limit of 5,000 records"),
            std::string::npos);
}

TEST_F(QueryCommand, PagesSayThatTheAnswerWasCutAndWhatWasChosen) {
  const std::string file = (folder / "out.pdf").string();
  const auto firstPage = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"--format", "pdf", "--output", file});
    EXPECT_EQ(run(options).status, exitDone);
    return test::outputOf("pdftotext -l 1 -layout '" + file + "' - | tr -s ' \\n' ' '");
  };
  const std::string cut = "INCOMPLETE: the limit of 5,000 was reached in: ALL Audits";
  EXPECT_EQ(firstPage({}).find(cut), std::string::npos);
  server.answer[0].rows.assign(db::rowLimitPerResult, test::auditRow("1", "CS"));
  const std::string page = firstPage({"--where", "Audit Type=CS"});
  EXPECT_NE(page.find(cut), std::string::npos) << page;
  EXPECT_NE(page.find("chosen: Audit Type = \"CS\""), std::string::npos) << page;
  EXPECT_NE(page.find("Filters Audit Type = \"CS\""), std::string::npos) << page;
  EXPECT_EQ(page.find("5000-row limit"), std::string::npos) << "said once";
  const std::string about = test::outputOf("pdfinfo '" + file + "'");
  EXPECT_NE(about.find(cut), std::string::npos) << about;
}

TEST_F(QueryCommand, PagesTellWhereTheirRowsComeFrom) {
  const std::string file = (folder / "out.pdf").string();
  ASSERT_EQ(run({"--database", "Trail", "--category", "C2", "--category", "C3", "--from", "2004-03-07", "--to",
                 "2004-03-08", "--sort", "Event", "--format", "pdf", "--output", file})
                .status,
            exitDone);
  const std::string page = test::outputOf("pdftotext -l 1 -layout '" + file + "' - | tr -s ' \\n' ' '");
  for (const char* part :
       {"Audit trail (embedded), Trail", "Asked for Configuration: Alarms, Tag Logging",
        "Date range 2004-03-07 to 2004-03-08, both days whole", "Filters none", "Sorted by Event", "4 on these pages"})
    EXPECT_NE(page.find(part), std::string::npos) << part << '\n' << page;
}

}  // namespace
}  // namespace korvel::cli
