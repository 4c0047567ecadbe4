#include <gtest/gtest.h>

#include "cli/messages.h"
#include "cli/query_command.h"
#include "tests/support/audit_rows.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using test::ToolRun;

/// Runs the tool against a server that answers with one record.
struct Arguments : testing::Test {
  Arguments() { server.answer = {{test::auditFields(), {test::auditRow("1", "CS")}, {}}}; }

  ToolRun run(const std::vector<std::string>& arguments) { return test::runTool(arguments, server.connector()); }

  /// The call text for the options.
  std::string callOf(std::vector<std::string> options) {
    options.insert(options.begin(), "query");
    server.executed.clear();
    const ToolRun result = run(options);
    return server.executed.empty() ? result.err : server.executed.front();
  }

  test::ScriptedServer server;
};

std::string callWith(const std::string& flags, const std::string& dates = "'False','False','False'") {
  std::string text = "QueryAudits ";
  for (const char flag : flags) text += flag == '1' ? "'True'," : "'False',";
  return text + dates;
}

TEST_F(Arguments, HelpTeaches) {
  const ToolRun tool = run({"--help"});
  EXPECT_EQ(tool.status, exitDone);
  for (const char* part : {"demo", "query", "Exit status", "KORVEL_AUDIT_DATA"})
    EXPECT_NE(tool.out.find(part), std::string::npos) << part;
  EXPECT_EQ(tool.err, "");

  const ToolRun query = run({"query", "--help"});
  EXPECT_EQ(query.status, exitDone);
  for (const char* part : {"--server", "--database", "--category", "--from", "--to", "--list", "--sort", "--descending",
                           "--format", "--output", "KorvelExplorer", "Examples:"})
    EXPECT_NE(query.out.find(part), std::string::npos) << part;

  const ToolRun demo = run({"demo", "--help"});
  EXPECT_EQ(demo.status, exitDone);
  for (const char* part : {"--folder", "--rows", "--seed", "--force", "Examples:"})
    EXPECT_NE(demo.out.find(part), std::string::npos) << part;
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(Arguments, HelpFitsATerminal) {
  for (const auto& arguments : {std::vector<std::string>{"--help"},
                                {"query", "--help"},
                                {"sql", "--help"},
                                {"demo", "--help"},
                                {"servers", "--help"},
                                {"databases", "--help"},
                                {"check", "--help"},
                                {"selftest", "--help"},
                                {"install-procedure", "--help"}}) {
    std::istringstream lines(run(arguments).out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 96U) << line;
  }
}

TEST_F(Arguments, VersionIsPrinted) {
  const ToolRun tool = run({"--version"});
  EXPECT_EQ(tool.status, exitDone);
  EXPECT_EQ(tool.out.rfind("korvel-audit ", 0), 0U);
}

TEST_F(Arguments, WrongUsageIsRefusedBeforeAnythingIsTried) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"quer"},
      {"query", "--nonsense"},
      {"query", "stray"},
      {"query", "--category"},
      {"query", "--category", "C5"},
      {"query", "--category", "User Archives"},
      {"query", "--category", ""},
      {"query", "--from", "2024-03-01"},
      {"query", "--to", "2024-03-01"},
      {"query", "--from", "2024-02-30", "--to", "2024-03-01"},
      {"query", "--from", "1.3.2024", "--to", "2024-03-01"},
      {"query", "--from", "2024-03-02", "--to", "2024-03-01"},
      {"query", "--list", "5"},
      {"query", "--list", "-1"},
      {"query", "--list", "x"},
      {"query", "--sort", "0"},
      {"query", "--sort", "19"},
      {"query", "--sort", "Colour"},
      {"query", "--format", "xml"},
      {"query", "--server", ""},
      {"query", "--server", "a; Database=b"},
      {"query", "--database", " "},
      {"demo", "--rows", "many"},
      {"demo", "--rows", "-1"},
      {"demo", "--rows", "1000000000"},
      {"demo", "--seed", "-1"},
      {"demo", "--seed", "99999999999999999999"},
      {"demo", "stray"},
      {"demo", "query"},
  };
  for (const auto& arguments : wrong) {
    const ToolRun tool = run(arguments);
    std::string line;
    for (const std::string& argument : arguments) line += argument + ' ';
    EXPECT_EQ(tool.status, exitWrongUsage) << line;
    EXPECT_EQ(tool.out, "") << line;
    EXPECT_NE(tool.err, "") << line;
  }
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(Arguments, WhatIsNotKnownIsNamed) {
  const std::string commands =
      "demo, query, history, review, marks, chart, sql, verify, snapshot, compare, selftest, servers, databases, "
      "install-procedure, "
      "check";
  const auto errorOf = [&](const std::vector<std::string>& arguments) {
    const std::string text = run(arguments).err;
    return text.substr(0, text.find('\n'));
  };
  EXPECT_EQ(errorOf({}), "korvel-audit: no command was given");
  EXPECT_EQ(errorOf({"quer", "--list", "1"}), "korvel-audit: 'quer' is no command; there are " + commands);
  EXPECT_EQ(errorOf({"--nonsense"}),
            "korvel-audit: '--nonsense' is no option here, and comes before a command; there are " + commands);
  EXPECT_NE(errorOf({"query", "--nonsense"}).find("--nonsense"), std::string::npos);
  EXPECT_NE(errorOf({"servers", "stray"}).find("stray"), std::string::npos);
  EXPECT_EQ(
      errorOf({"query", "--category", "Nope"}),
      "--category: 'Nope' is no category; there are A Configuration, C1 KorvelExplorer, C2 Alarms, C3 TagLogging, "
      "C4 UAcs, B Runtime, R1 CustomActions, R2 UArt, C Document Control, D1 CheckIN, D2 CheckOUT, D3 Rollback, "
      "D4 Restore");
  EXPECT_EQ(errorOf({"query", "--category", "user archives"}),
            "--category: 'user archives' is the caption of C4 UAcs and R2 UArt");
}

TEST_F(Arguments, EveryCommandsHelpHasTheExitStates) {
  for (const char* command :
       {"demo", "query", "history", "chart", "sql", "servers", "databases", "install-procedure", "check"}) {
    const std::string help = run({command, "--help"}).out;
    for (const char* state : {"Exit status:", "  0  done", "  1  no records", "  2  wrong usage", "  3  the database",
                              "  4  the output", "  130  stopped"})
      EXPECT_NE(help.find(state), std::string::npos) << command << state;
  }
}

TEST_F(Arguments, DatesBeginWhereThoseOfAServerDo) {
  const ToolRun early = run({"query", "--from", "1700-01-01", "--to", "2004-01-01"});
  EXPECT_EQ(early.status, exitWrongUsage);
  EXPECT_NE(early.err.find("--from: '1700-01-01' is too early: dates begin in 1753"), std::string::npos) << early.err;
  EXPECT_EQ(run({"query", "--from", "1752-12-31", "--to", "2004-01-01"}).status, exitWrongUsage);
  EXPECT_EQ(run({"query", "--from", "1752-01-01", "--to", "1752-12-31"}).status, exitWrongUsage);
  EXPECT_TRUE(server.opened.empty());
  EXPECT_EQ(callOf({"--from", "1753-01-01", "--to", "1753-01-01"}),
            callWith("1111111111", "'True','1753-01-01 00:00:00.000','1753-01-01 23:59:59.999'"));
}

TEST_F(Arguments, AllCategoriesAndNoDatesAreTheDefault) {
  EXPECT_EQ(callOf({}), callWith("1111111111"));
  EXPECT_EQ(server.opened,
            std::vector<std::string>{
                "Provider=SQLOLEDB; Server=(embedded); Database=Korvel_Audit; Integrated Security=SSPI;"});
}

TEST_F(Arguments, ServerAndDatabaseAreChosen) {
  callOf({"--server", "AUDITSRV\\PLANT", "--database", "Korvel_Audit_MU"});
  EXPECT_EQ(server.opened, std::vector<std::string>{"Provider=SQLOLEDB; Server=AUDITSRV\\PLANT; "
                                                    "Database=Korvel_Audit_MU; Integrated Security=SSPI;"});
}

TEST_F(Arguments, CategoriesGoByKeyNameOrGroup) {
  EXPECT_EQ(callOf({"--category", "C1"}), callWith("1000000000"));
  EXPECT_EQ(callOf({"--category", "d4"}), callWith("0000000001"));
  EXPECT_EQ(callOf({"--category", "korvelexplorer", "--category", "RESTORE"}), callWith("1000000001"));
  EXPECT_EQ(callOf({"--category", "UArt", "--category", "R2"}), callWith("0000010000"));
  EXPECT_EQ(callOf({"--category", "Alarms,TagLogging"}), callWith("0110000000"));
  EXPECT_EQ(callOf({"--category", "A"}), callWith("1111000000"));
  EXPECT_EQ(callOf({"--category", "b", "--category", "D1"}), callWith("0000111000"));
  EXPECT_EQ(callOf({"--category", "C"}), callWith("0000001111"));
  EXPECT_EQ(callOf({"--category", "Custom Operator Actions"}), callWith("0000100000"));
  EXPECT_EQ(callOf({"--category", "check in,korvel explorer"}), callWith("1000001000"));
  EXPECT_EQ(callOf({"--category", "Document Control"}), callWith("0000001111"));
  EXPECT_EQ(callOf({"--category", "A", "--category", "B", "--category", "C"}), callWith("1111111111"));
}

TEST_F(Arguments, EveryCategoryNameMeansItsParameter) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"C1", "KorvelExplorer"}, {"C2", "Alarms"},  {"C3", "TagLogging"}, {"C4", "UAcs"},     {"R1", "CustomActions"},
      {"R2", "UArt"},           {"D1", "CheckIN"}, {"D2", "CheckOUT"},   {"D3", "Rollback"}, {"D4", "Restore"}};
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::string flags(10, '0');
    flags[i] = '1';
    EXPECT_EQ(callOf({"--category", names[i].first}), callWith(flags)) << names[i].first;
    EXPECT_EQ(callOf({"--category", names[i].second}), callWith(flags)) << names[i].second;
  }
}

TEST_F(Arguments, DatesReachTheCall) {
  EXPECT_EQ(callOf({"--from", "2004-03-01", "--to", "2004-03-07", "--category", "C1", "--category", "R1"}),
            "QueryAudits 'True','False','False','False','True','False','False','False','False','False','True',"
            "'2004-03-01 00:00:00.000','2004-03-07 23:59:59.999'");
  EXPECT_EQ(callOf({"--from", "2024-02-29", "--to", "2024-02-29"}),
            callWith("1111111111", "'True','2024-02-29 00:00:00.000','2024-02-29 23:59:59.999'"));
}

TEST(ColumnNamed, ReadsCaptionsNamesAndNumbers) {
  EXPECT_EQ(columnNamed("Entry ID"), results::ColumnIndex{0});
  EXPECT_EQ(columnNamed("nr"), results::ColumnIndex{0});
  EXPECT_EQ(columnNamed("1"), results::ColumnIndex{0});
  EXPECT_EQ(columnNamed("area"), results::ColumnIndex{5});
  EXPECT_EQ(columnNamed("TableName"), results::ColumnIndex{5});
  EXPECT_EQ(columnNamed("18"), results::ColumnIndex{17});
  for (const char* column : {"", "0", "19", "01", "Entry", "1 "})
    EXPECT_EQ(columnNamed(column), std::nullopt) << column;
}

}  // namespace
}  // namespace korvel::cli
