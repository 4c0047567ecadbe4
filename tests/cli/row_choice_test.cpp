#include "cli/row_choice.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/messages.h"
#include "tests/cli/query_command_fixture.h"
#include "tests/cli/sql_command_fixture.h"
#include "tests/support/audit_rows.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::auditRow;
using test::ToolRun;

constexpr std::size_t dateColumn = 1;
constexpr std::size_t eventColumn = 7;
constexpr std::size_t userColumn = 14;
constexpr std::size_t commentColumn = 16;

/// Five records whose events, users, days and comments differ.
struct ChosenRows : QueryCommand {
  ChosenRows() {
    const std::vector<std::vector<std::string>> written = {{"UPDATE", "Heike Bäuerle", "2004-03-07 10:00:00", "why"},
                                                           {"UPDATE", "José", "2004-03-07 11:00:00", ""},
                                                           {"DELETE", "José", "2004-03-08 10:00:00", "Bäuerle asked"},
                                                           {"INSERT", "", "2004-04-01 10:00:00", "why"},
                                                           {"UPDATE", "null", "2005-03-07 10:00:00", "x"}};
    server.answer[0].rows.clear();
    for (std::size_t i = 0; i < written.size(); ++i) {
      auto row = auditRow(std::to_string(i + 1), "CS");
      row[eventColumn] = written[i][0];
      row[userColumn] = written[i][1] == "null" ? std::nullopt : std::optional(written[i][1]);
      row[dateColumn] = written[i][2];
      row[commentColumn] = written[i][3];
      server.answer[0].rows.push_back(row);
    }
  }
};

TEST_F(ChosenRows, HaveTheValuesThatAreAskedFor) {
  EXPECT_EQ(numbers({"--where", "Event=UPDATE"}), "1 2 5 ");
  EXPECT_EQ(numbers({"--where", "eventtype = UPDATE"}), "1 2 5 ");
  EXPECT_EQ(numbers({"--where", "8=UPDATE"}), "1 2 5 ");
  EXPECT_EQ(numbers({"--where", "Event!=UPDATE"}), "3 4 ");
  EXPECT_EQ(numbers({"--where", "Event=UPDATE", "--where", "Event=INSERT"}), "1 2 4 5 ");
  EXPECT_EQ(numbers({"--where", "Event=UPDATE", "--where", "User Name=José"}), "2 ");
  EXPECT_EQ(numbers({"--where", "Event!=UPDATE", "--where", "Event!=INSERT"}), "3 ");
  EXPECT_EQ(numbers({"--where", "User Name="}), "4 5 ");
  EXPECT_EQ(numbers({"--where", "User Name!="}), "1 2 3 ");
  EXPECT_EQ(numbers({"--where", "Comments=why"}), "1 4 ");
}

TEST_F(ChosenRows, HaveTheTextThatIsFound) {
  EXPECT_EQ(numbers({"--find", "BÄUERLE"}), "1 3 ");
  EXPECT_EQ(numbers({"--find", "BÄUERLE", "--where", "Event=DELETE"}), "3 ");
  EXPECT_EQ(run({"--find", "BÄUERLE", "--exact"}).status, exitNoRecords);
  EXPECT_EQ(numbers({"--find", "^jos.$", "--regex"}), "2 3 ");
  EXPECT_EQ(run({"--find", "^jos.$", "--regex", "--exact"}).status, exitNoRecords);
}

TEST_F(ChosenRows, AreCountedForTheReader) {
  const ToolRun tool = run({"--where", "Event=UPDATE", "--quiet"});
  EXPECT_EQ(tool.err, "korvel-audit: 3 of 5 records chosen\n");
  EXPECT_EQ(run({"--quiet"}).err, "");
}

TEST_F(ChosenRows, NothingLeftIsNoRecords) {
  const std::string file = (folder / "kept.csv").string();
  const ToolRun tool = run({"--where", "Event=NONE", "--quiet", "--output", file});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_EQ(tool.out, "");
  EXPECT_EQ(tool.err, "korvel-audit: 0 of 5 records chosen\n");
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(ChosenRows, WhatCannotBeAskedIsRefusedBeforeTheQuery) {
  const std::vector<std::vector<std::string>> wrong = {{"--where", "Event"},
                                                       {"--where", "=UPDATE"},
                                                       {"--where", "!=UPDATE"},
                                                       {"--where", "Nothing=1"},
                                                       {"--count-by", "Nothing"},
                                                       {"--find", ""},
                                                       {"--regex"},
                                                       {"--exact"},
                                                       {"--find", "a(", "--regex"},
                                                       {"--where", "19=UPDATE"},
                                                       {"--count-by", "Event", "--sort", "Event"},
                                                       {"--count-by", "Event", "--descending"}};
  for (const std::vector<std::string>& options : wrong) {
    const ToolRun tool = run(options);
    EXPECT_EQ(tool.status, exitWrongUsage) << options.front() << ' ' << options.back();
    EXPECT_NE(tool.err, "");
  }
  EXPECT_TRUE(server.executed.empty());
  EXPECT_NE(run({"--find", "a(", "--regex"}).err.find("'a(' is no regular expression: "), std::string::npos);
  EXPECT_NE(run({"--where", "Nothing=1"}).err.find("'Nothing' is no column of the answer; there are Entry ID, "),
            std::string::npos);
}

TEST_F(ChosenRows, AreCountedByColumns) {
  EXPECT_EQ(run({"--count-by", "Event", "--quiet"}).out, "Event,Count\r\nUPDATE,3\r\nDELETE,1\r\nINSERT,1\r\n");
  EXPECT_EQ(run({"--count-by", "User Name", "--quiet"}).out,
            "User Name,Count\r\nJosé,2\r\n,1\r\n\"\",1\r\nHeike Bäuerle,1\r\n");
  EXPECT_EQ(run({"--count-by", "Event,Date Time:year", "--quiet"}).out,
            "Event,Date Time,Count\r\nUPDATE,2004,2\r\nDELETE,2004,1\r\nINSERT,2004,1\r\nUPDATE,2005,1\r\n");
  EXPECT_EQ(run({"--count-by", "Date Time:month", "--where", "Event=UPDATE", "--quiet"}).out,
            "Date Time,Count\r\n2004-03,2\r\n2005-03,1\r\n");
  EXPECT_EQ(run({"--count-by", "Comments", "--quiet"}).out,
            "Comments,Count\r\nwhy,2\r\n\"\",1\r\nBäuerle asked,1\r\nx,1\r\n");
  EXPECT_EQ(json::parse(run({"--count-by", "Event", "--format", "json"}).out).size(), 3U);
}

struct ChosenSqlRows : SqlCommand {};

TEST_F(ChosenSqlRows, OptionsMayComeBeforeTheQuery) {
  EXPECT_EQ(run({"--count-by", "Nr", "select"}).out, "Nr,Count\r\n10,1\r\n9,1\r\n");
  EXPECT_EQ(run({"--where", "Nr=9", "--format", "csv", "select"}).status, exitDone);
  EXPECT_EQ(run({"--where", "Nr=9", "select"}).status, exitDone);
}

TEST_F(ChosenSqlRows, AreThoseOfTheAnswer) {
  EXPECT_EQ(run({"select", "--where", "Nr=9", "--format", "csv"}).out, "Nr,Text,Text\r\n9,\"\",\"\"\"x\"\"\r\n|\"\r\n");
  EXPECT_EQ(run({"select", "--find", "A,B", "--format", "csv"}).out, "Nr,Text,Text\r\n10,\" a,b \",\r\n");
  EXPECT_EQ(run({"select", "--count-by", "Nr"}).out, "Nr,Count\r\n10,1\r\n9,1\r\n");
  EXPECT_EQ(run({"select", "--where", "3=", "--format", "csv"}).out, "Nr,Text,Text\r\n10,\" a,b \",\r\n");
}

TEST_F(ChosenSqlRows, AValueThatIsTooMuchForAnExpressionIsTold) {
  server.answer[0].rows[1][1] = std::string(200, 'a') + "!x";
  const ToolRun tool = run({"select", "--find", "^(a+)+$|a,b", "--regex", "--format", "csv"});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(
      tool.err,
      "korvel-audit: 1 of 2 records chosen; some values are too much for this regular expression and count as not "
      "matching\n");
  EXPECT_EQ(run({"select", "--find", "a,b", "--regex"}).err, "korvel-audit: 1 of 2 records chosen\n");
}

TEST_F(ChosenSqlRows, NothingLeftAndUnknownColumnsWriteNothing) {
  EXPECT_EQ(run({"select", "--where", "Nr=8", "--output", file("a")}).status, exitNoRecords);
  EXPECT_EQ(run({"select", "--where", "Event=8", "--output", file("a")}).status, exitWrongUsage);
  EXPECT_EQ(run({"select", "--count-by", "Event", "--output", file("a")}).status, exitWrongUsage);
  EXPECT_EQ(filesInFolder(), 0U);
}

/// Runs `history` against a scripted server.
struct HistoryCommand : ChosenRows {
  HistoryCommand() {
    const std::vector<std::vector<std::string>> written = {{"TIC-1", "2004-03-07 10:00:00", "1", "2", "Limits"},
                                                           {"TIC-2", "2004-03-07 11:00:00", "8", "9", "Limits"},
                                                           {"TIC-1", "2004-03-07 09:00:00", "0", "1", "Limits"},
                                                           {"TIC-1", "2004-03-08 09:00:00", "3", "4", "Limits"},
                                                           {"TIC-1", "2004-03-08 10:00:00", "3", "4", "Hosts"}};
    for (std::size_t i = 0; i < written.size(); ++i) {
      auto& row = server.answer[0].rows[i];
      row[8] = written[i][0];
      row[dateColumn] = written[i][1];
      row[9] = written[i][2];
      row[10] = written[i][3];
      row[5] = written[i][4];
    }
  }

  ToolRun history(std::vector<std::string> options) {
    options.insert(options.begin(), "history");
    return test::runTool(options, server.connector());
  }
  std::string told(std::vector<std::string> options) {
    options.insert(options.end(), {"--format", "json", "--quiet"});
    std::string text;
    for (const json& record : json::parse(history(options).out))
      text += record["Nr"].get<std::string>() + (record["Continues"] == "yes" ? " " : "! ");
    return text;
  }
};

TEST_F(HistoryCommand, IsInTheOrderOfTimeAndMarksWhatDoesNotContinue) {
  EXPECT_EQ(told({"--item", "TIC-1", "--area", "Limits"}), "3 1 4! ");
  EXPECT_EQ(told({"--item", "TIC-1"}), "5 3 1 4! ");
  EXPECT_EQ(told({"--item", "TIC-2"}), "2 ");
  EXPECT_EQ(told({"--item", "TIC-1", "--where", "Area!=Limits"}), "5 ");
}

TEST_F(HistoryCommand, AChoiceMakesNoGaps) {
  EXPECT_EQ(told({"--item", "TIC-1", "--area", "Limits", "--where", "New Value!=1"}), "1 4! ");
  EXPECT_EQ(history({"--item", "TIC-1", "--where", "New Value=77", "--quiet"}).status, exitNoRecords);
}

TEST_F(HistoryCommand, HasAllColumnsAndContinues) {
  const ToolRun tool = history({"--item", "TIC-2", "--format", "csv"});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.out.substr(0, tool.out.find('\r')),
            "Nr,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,Continues,"
            "OldValue,NewValue,PCName,OSUser,AppUser,UserName,AuditType,Comments,T1");
  EXPECT_NE(tool.err.find("korvel-audit: 1 record of 1 item\n"), std::string::npos) << tool.err;
}

/// Records without an item id may be about several things.
TEST_F(HistoryCommand, WithoutAnItemIdNothingIsSaidToContinue) {
  server.answer[0].rows[0][8] = "";
  const ToolRun tool = history({"--item", "", "--format", "json"});
  ASSERT_EQ(tool.status, exitDone) << tool.err;
  EXPECT_EQ(json::parse(tool.out).at(0)["Continues"], "");
}

TEST_F(HistoryCommand, AnUnknownItemIsNoRecords) {
  const ToolRun tool = history({"--item", "TIC-9", "--quiet"});
  EXPECT_EQ(tool.status, exitNoRecords);
  EXPECT_EQ(tool.out, "");
  EXPECT_NE(tool.err.find("no record of the item 'TIC-9'; nothing was written"), std::string::npos);
  EXPECT_EQ(history({}).status, exitWrongUsage);
  EXPECT_EQ(history({"--item", "TIC-1", "--where", "Nothing=1"}).status, exitWrongUsage);
}

}  // namespace
}  // namespace korvel::cli
