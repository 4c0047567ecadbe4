#include "cli/chart_command.h"

#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cli/messages.h"
#include "db/procedure/audit_conditions.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using test::auditRow;
using test::ToolRun;

/// Runs `chart` against a scripted server with four records on three days.
struct ChartCommand : testing::Test {
  ChartCommand() {
    server.answer = {{test::auditFields(), {}, {}}};
    add("1", "2004-03-07 10:00:00", "UPDATE");
    add("2", "2004-03-07 11:00:00", "INSERT");
    add("3", "2004-03-09 10:00:00", "UPDATE");
    add("4", "soon", "UPDATE");
  }

  void add(const std::string& number, const std::string& time, const std::string& event) {
    test::ScriptedRow row = auditRow(number, "CS");
    row[1] = time;
    row[7] = event;
    server.answer[0].rows.push_back(row);
  }

  ToolRun run(std::vector<std::string> options, const std::string& name = "activity.svg") {
    file = (folder.path() / name).string();
    options.insert(options.begin(), "chart");
    options.insert(options.end(), {"--output", file});
    return test::runTool(options, server.connector());
  }
  std::string written() const {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  bool says(const std::string& text) const { return written().find(text) != std::string::npos; }

  test::ScriptedServer server;
  test::TemporaryFolder folder;
  std::string file;
};

TEST_F(ChartCommand, DrawsTheListAsSvg) {
  const ToolRun tool = run({});
  EXPECT_EQ(tool.status, exitDone) << tool.err;
  EXPECT_EQ(tool.out, "");
  EXPECT_NE(tool.err.find("list 0 (ALL Audits): 4 records\n"), std::string::npos) << tool.err;
  EXPECT_NE(tool.err.find("note: 1 record has no date and is not shown.\n"), std::string::npos) << tool.err;
  EXPECT_TRUE(says("<title id=\"title\">ALL Audits, records by day</title>")) << written();
  EXPECT_TRUE(says("7 Mar 2004 - 9 Mar 2004; UPDATE: 2; INSERT: 1")) << written();
  EXPECT_TRUE(says(">Records without a date, not shown: 1<")) << written();
}

TEST_F(ChartCommand, DrawsAPngInEveryLook) {
  std::vector<QRgb> grounds;
  for (const char* look : {"light", "dark", "black"}) {
    ASSERT_EQ(run({"--look", look}, "activity.PNG").status, exitDone);
    const QImage image(QString::fromStdString(file));
    ASSERT_EQ(image.size(), QSize(2400, 800));
    grounds.push_back(image.pixel(0, 0));
  }
  EXPECT_EQ(grounds[0], grounds[2]);
  EXPECT_NE(grounds[0], grounds[1]);
}

TEST_F(ChartCommand, CountsByTheGivenPeriodAndColumn) {
  EXPECT_EQ(run({"--by", "hour"}).status, exitDone);
  EXPECT_TRUE(says("7 Mar 2004 10:00 - 9 Mar 2004 10:00")) << written();
  EXPECT_EQ(run({"--by", "MONTH", "--stack", "audit type", "--list", "1"}).status, exitDone);
  EXPECT_TRUE(says("Configuration, records by month")) << written();
  EXPECT_TRUE(says("Mar 2004 - Mar 2004; CS: 3")) << written();
}

TEST_F(ChartCommand, TakesTheRowsThatAreChosen) {
  const ToolRun tool = run({"--where", "Event=INSERT"});
  EXPECT_EQ(tool.status, exitDone) << tool.err;
  EXPECT_TRUE(says("7 Mar 2004 - 7 Mar 2004; INSERT: 1; 1 of 4 records chosen: Event = &quot;INSERT&quot;<"))
      << written();
  EXPECT_TRUE(says(">1 of 4 records chosen: Event = &quot;INSERT&quot;</text>")) << written();
  EXPECT_EQ(run({"--find", "2004-03-09"}).status, exitDone);
  EXPECT_TRUE(says("9 Mar 2004 - 9 Mar 2004; UPDATE: 1; 1 of 4 records chosen: find &quot;2004-03-09&quot;<"))
      << written();
}

TEST_F(ChartCommand, SaysThatTheAnswerWasCut) {
  const std::string cut = "5000-row limit of an answer reached: there may be more records";
  ASSERT_EQ(run({}).status, exitDone);
  EXPECT_FALSE(says(cut));
  while (server.answer[0].rows.size() < db::rowLimitPerResult) add("9", "2004-03-07 12:00:00", "UPDATE");
  ASSERT_EQ(run({"--where", "User Name!=nobody"}).status, exitDone);
  EXPECT_TRUE(says(">" + cut + ". 5,000 of 5,000 records chosen: User Name != &quot;nobody&quot;. Records"))
      << written();
}

TEST_F(ChartCommand, WhereNothingIsLeftNothingIsWritten) {
  std::ofstream(folder.path() / "activity.svg") << "before";
  EXPECT_EQ(run({"--where", "Event=DELETE"}).status, exitNoRecords);
  EXPECT_EQ(written(), "before");
  EXPECT_EQ(run({"--list", "3"}).status, exitNoRecords);
  EXPECT_EQ(written(), "before");
  const ToolRun tool = run({"--where", "Date Time=soon"});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_NE(tool.err.find("no record has a date; nothing was written"), std::string::npos) << tool.err;
  EXPECT_EQ(written(), "before");
}

TEST_F(ChartCommand, RefusesWhatItCannotDraw) {
  for (const auto& [options, complaint] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{{{"--by", "minute"}, "'minute' is no period"},
                                                                     {{"--look", "red"}, "'red' is no look"},
                                                                     {{"--stack", "Colour"}, "'Colour' is no column"},
                                                                     {{"--where", "Colour=red"}, "Colour"}}) {
    const ToolRun tool = run(options);
    EXPECT_EQ(tool.status, exitWrongUsage) << complaint;
    EXPECT_NE(tool.err.find(complaint), std::string::npos) << tool.err;
  }
  for (const char* name : {"activity.jpg", "activity", ".svg.gz"}) {
    const ToolRun tool = run({}, name);
    EXPECT_EQ(tool.status, exitWrongUsage) << name;
    EXPECT_NE(tool.err.find("has to end in .svg or .png"), std::string::npos) << tool.err;
    EXPECT_FALSE(std::filesystem::exists(file));
  }
  EXPECT_EQ(test::runTool({"chart"}, server.connector()).status, exitWrongUsage);
}

TEST_F(ChartCommand, APictureThatCannotBeWrittenIsAFailureOfTheOutput) {
  EXPECT_EQ(run({}, "missing/activity.svg").status, exitOutput);
  EXPECT_TRUE(server.executed.empty()) << "the database was asked";
}

}  // namespace
}  // namespace korvel::cli
