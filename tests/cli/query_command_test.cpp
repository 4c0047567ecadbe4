#include "cli/query_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>

#include "base/atomic_file.h"
#include "cli/messages.h"
#include "tests/cli/query_command_fixture.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::auditRow;
using test::ToolRun;

TEST_F(QueryCommand, WritesATableAndCountsOnStandardError) {
  const ToolRun tool = run({});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.out.rfind("Entry ID  Date Time  ", 0), 0U) << tool.out;
  EXPECT_NE(tool.out.find("\n9         DateTime   "), std::string::npos) << tool.out;
  EXPECT_EQ(tool.err,
            "list 0 (ALL Audits): 4 records\nlist 1 (Configuration): 2 records\nlist 2 (Runtime): 1 record\n"
            "list 3 (Document Control): 0 records\nlist 4 (KorvelAudit): 0 records\n");
}

TEST_F(QueryCommand, WritesTheListThatIsAskedFor) {
  EXPECT_EQ(numbers({}), "9 10 11 100 ");
  EXPECT_EQ(numbers({"--list", "0"}), "9 10 11 100 ");
  EXPECT_EQ(numbers({"--list", "1"}), "10 100 ");
  EXPECT_EQ(numbers({"--list", "2"}), "9 ");
}

TEST_F(QueryCommand, Sorts) {
  server.answer[0].rows = {auditRow("1", "CS"), auditRow("2", "CS"), auditRow("3", "CS")};
  for (std::size_t row = 0; row < 3; ++row) server.answer[0].rows[row][5] = std::vector{"b", "C", "a"}[row];
  EXPECT_EQ(numbers({"--sort", "Area"}), "3 1 2 ");
  EXPECT_EQ(numbers({"--sort", "tablename", "--descending"}), "2 1 3 ");
  EXPECT_EQ(numbers({"--sort", "6"}), "3 1 2 ");
  EXPECT_EQ(numbers({"--descending"}), "3 2 1 ");
  EXPECT_EQ(numbers({"--list", "1", "--sort", "Area"}), "3 1 2 ");
}

TEST_F(QueryCommand, WritesEveryFormat) {
  server.answer[0].rows = {auditRow("7", "CS")};
  EXPECT_EQ(run({"--format", "text"}).out.substr(0, 19), "Entry ID,Date Time,");
  EXPECT_EQ(run({"--format", "EXCHANGE"}).out.substr(0, 19), "Entry ID|Date Time|");
  EXPECT_EQ(run({"--format", "csv"}).out.substr(0, 12), "Nr,DateTime,");
  EXPECT_EQ(run({"--format", "table"}).out, run({}).out);
  const json records = json::parse(run({"--format", "json"}).out);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].size(), 18U);
  EXPECT_EQ(records[0]["Comments"], "Comments");
}

TEST_F(QueryCommand, HostileValuesStayValues) {
  auto row = auditRow("1", "CS");
  row[9] = "a\"b,c|d\r\ne\x1B[2Jf\u009Bg\u202E";
  server.answer[0].rows = {row};
  const ToolRun table = run({});
  EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'), 3);
  EXPECT_EQ(table.out.find('\x1B'), std::string::npos);
  EXPECT_NE(table.out.find("a\"b,c|d\\r\\ne\\x1B[2Jf\\u009Bg\\u202E"), std::string::npos);
  EXPECT_NE(run({"--format", "csv"}).out.find("\"a\"\"b,c|d\r\ne\x1B[2Jf\u009Bg\u202E\""), std::string::npos);
  EXPECT_EQ(json::parse(run({"--format", "json"}).out)[0]["OldValue"], *row[9]);
  EXPECT_NE(run({"--format", "text"}).out.find(',' + *row[9] + ','), std::string::npos);
  EXPECT_NE(run({"--format", "exchange"}).out.find('|' + *row[9] + '|'), std::string::npos);
}

TEST_F(QueryCommand, NoRecordsIsReported) {
  server.answer[0].rows.clear();
  const ToolRun tool = run({"--output", (folder / "out").string()});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_EQ(tool.out, "");
  EXPECT_EQ(tool.err, "korvel-audit: No records found for filter criteria\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "out"));
}

TEST_F(QueryCommand, EmptyListOfAFullAnswerIsNoRecordsToo) {
  writeFileAtomically(folder / "out", "earlier");
  const ToolRun tool = run({"--list", "3", "--format", "json", "--output", (folder / "out").string()});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_EQ(tool.out, "");
  EXPECT_NE(tool.err.find("list 0 (ALL Audits): 4 records\n"), std::string::npos);
  EXPECT_NE(tool.err.find("korvel-audit: list 3 (Document Control) is empty; nothing was written\n"),
            std::string::npos);
  EXPECT_EQ(readFile(folder / "out"), "earlier");
}

TEST_F(QueryCommand, FailureOfTheDatabaseIsReportedWithNumberAndText) {
  server.refusesConnection = [] { throw Error(17, "server\ndoes not \x1B[31mexist"); };
  const ToolRun tool = run({});
  EXPECT_EQ(tool.status, exitDatabase);
  EXPECT_EQ(tool.out, "");
  EXPECT_EQ(tool.err, "korvel-audit: database error 17: server\\ndoes not \\x1B[31mexist\n");
}

TEST_F(QueryCommand, FailureHalfWayWritesNothing) {
  writeFileAtomically(folder / "out", "earlier");
  server.answer[0].breaksOff = [] { throw Error(10054, "connection reset"); };
  const ToolRun tool = run({"--output", (folder / "out").string()});
  EXPECT_EQ(tool.status, exitDatabase);
  EXPECT_EQ(tool.err, "korvel-audit: database error 10054: connection reset\n");
  EXPECT_EQ(readFile(folder / "out"), "earlier");
  EXPECT_EQ(run({}).out, "");
}

TEST_F(QueryCommand, SaysWhenTheServerMayHoldMore) {
  server.answer[0].rows.assign(db::rowLimitPerResult, auditRow("1", "CS"));
  EXPECT_NE(run({"--format", "csv"}).err.find("note: 1 answer holds 5000 records, the most that the procedure returns"),
            std::string::npos);
  server.answer[0].rows.pop_back();
  EXPECT_EQ(run({"--format", "csv"}).err.find("note:"), std::string::npos);
}

TEST_F(QueryCommand, CompletesAnAnswerThatIsCut) {
  // Whatever the dates, as many rows as the procedure returns: the table has them all.
  server.answer[0].rows.assign(db::rowLimitPerResult, auditRow("1", "CS"));
  const ToolRun tool = run({"--complete", "--format", "csv", "--quiet"});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.err, "complete: 5,000 records\n");
  EXPECT_EQ(std::count(tool.out.begin(), tool.out.end(), '\n'), 5001);
  ASSERT_EQ(server.executed.size(), 3U);
  EXPECT_EQ(server.executed[2], "SELECT * FROM Korvel_Audit_Trails");
}

TEST_F(QueryCommand, AsksOnceForACompleteAnswerThatIsNotCut) {
  const ToolRun tool = run({"--complete", "--quiet"});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.err, "complete: 4 records\n");
  EXPECT_EQ(tool.out, run({}).out);
}

TEST_F(QueryCommand, SaysWhatIsMissingFromAnAnswerThatCannotBeCompleted) {
  server.answer[0].rows.assign(db::rowLimitPerResult, auditRow("1", "CS"));
  server.refusesExecution = [&] {
    if (server.executed.back().starts_with("SELECT")) throw Error(229, "The SELECT permission was denied.");
  };
  const ToolRun tool = run({"--complete", "--format", "csv", "--quiet"});
  EXPECT_EQ(tool.status, exitIncomplete);
  EXPECT_EQ(tool.err,
            "incomplete: 5,000 records\n"
            "all categories: more than 5,000 records come from all dates, whatever is asked for; the table cannot be "
            "read instead: The SELECT permission was denied.\n"
            "all categories: records without a date cannot be asked for, and the table cannot be read instead: The "
            "SELECT permission was denied.\n");
  EXPECT_EQ(std::count(tool.out.begin(), tool.out.end(), '\n'), 5001);
  // A list without rows is not known to have none.
  const ToolRun empty = run({"--complete", "--format", "csv", "--quiet", "--list", "3"});
  EXPECT_EQ(empty.status, exitIncomplete);
  EXPECT_EQ(empty.out, "");
}

TEST_F(QueryCommand, LeavesFilesAsTheyWereWhereCompletingFails) {
  writeFileAtomically(folder / "out", "earlier");
  server.answer[0].rows.assign(db::rowLimitPerResult, auditRow("1", "CS"));
  server.refusesExecution = [&] {
    if (server.executed.size() > 1) throw Error(10054, "connection reset");
  };
  const ToolRun tool = run({"--complete", "--output", (folder / "out").string()});
  EXPECT_EQ(tool.status, exitDatabase);
  EXPECT_EQ(tool.err, "korvel-audit: database error 10054: connection reset\n");
  EXPECT_EQ(readFile(folder / "out"), "earlier");
}

TEST_F(QueryCommand, QuietLeavesOutTheCountsAndNothingElse) {
  EXPECT_EQ(run({"--quiet"}).err, "");
  EXPECT_EQ(run({"--quiet"}).out, run({}).out);
  server.answer[0].rows.assign(db::rowLimitPerResult, auditRow("1", "CS"));
  const ToolRun full = run({"--quiet", "--format", "csv"});
  EXPECT_EQ(full.err.find("note: 1 answer holds 5000 records"), 0U) << full.err;
  server.answer[0].rows.clear();
  EXPECT_EQ(run({"--quiet"}).err, "korvel-audit: No records found for filter criteria\n");
}

TEST_F(QueryCommand, SaysThatAlarmRowsOfAllDatesCome) {
  const std::string note =
      "note: Rows of the alarm tables (vel_Alg...) come from all dates, whatever the date range.\n";
  const std::vector<std::string> day = {"--from", "2004-03-07", "--to", "2004-03-07"};
  const auto saysSo = [&](std::vector<std::string> options, bool withDates) {
    if (withDates) options.insert(options.end(), day.begin(), day.end());
    const ToolRun tool = run(options);
    EXPECT_EQ(tool.status, exitDone) << tool.err;
    return tool.err.find(note) != std::string::npos;
  };
  EXPECT_TRUE(saysSo({"--category", "Alarms"}, true));
  EXPECT_TRUE(saysSo({"--category", "A", "--category", "D1"}, true));
  EXPECT_TRUE(saysSo({"--category", "Alarms", "--quiet"}, true)) << "a note is no count";
  EXPECT_FALSE(saysSo({"--category", "Alarms"}, false)) << "without dates nothing is unexpected";
  EXPECT_FALSE(saysSo({"--category", "TagLogging"}, true));
  EXPECT_FALSE(saysSo({}, true)) << "all ten: the procedure limits the whole trail";
}

TEST_F(QueryCommand, ATargetThatCannotBeWrittenIsReportedBeforeTheQuery) {
  EXPECT_EQ(run({"--output", (folder / "absent/out").string()}).status, exitOutput);
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(QueryCommand, WhatHasNothingToWriteLeavesAFileAsItWas) {
  writeFileAtomically(folder / "out", "earlier");
  EXPECT_EQ(run({"--list", "3", "--output", (folder / "out").string()}).status, exitNoRecords);
  server.refusesExecution = [] { throw Error(208, "Invalid object name"); };
  EXPECT_EQ(run({"--output", (folder / "out").string()}).status, exitDatabase);
  EXPECT_EQ(readFile(folder / "out"), "earlier");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1) << "nothing stands beside it";
}

TEST_F(QueryCommand, WritesAFileWhole) {
  const std::string file = (folder / "out.csv").string();
  writeFileAtomically(file, "earlier");
  const ToolRun tool = run({"--format", "csv", "--output", file});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.out, "");
  EXPECT_EQ(readFile(file), run({"--format", "csv"}).out);
  EXPECT_EQ(run({"--format", "csv", "--output", "-"}).out, readFile(file));
}

TEST_F(QueryCommand, FileThatCannotBeWrittenIsAnOutputFailure) {
  for (const std::string& target : {(folder / "absent/out").string(), folder.path().string(), std::string()}) {
    const ToolRun tool = run({"--output", target});
    EXPECT_EQ(tool.status, exitOutput) << target;
    EXPECT_EQ(tool.out, "");
    EXPECT_NE(tool.err.find("korvel-audit: error "), std::string::npos) << tool.err;
  }
}

TEST_F(QueryCommand, StandardOutputThatFailsIsAnOutputFailure) {
  std::ostringstream out;
  std::ostringstream err;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(runTool({"query"}, out, err, server.connector()), exitOutput);
  EXPECT_NE(err.str().find("cannot write standard output"), std::string::npos);
}

}  // namespace
}  // namespace korvel::cli
