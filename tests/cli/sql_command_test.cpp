#include "cli/sql_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <nlohmann/json.hpp>
#include <streambuf>

#include "base/atomic_file.h"
#include "base/system_errors.h"
#include "cli/messages.h"
#include "query/query_file.h"
#include "tests/cli/sql_command_fixture.h"
#include "tests/support/scripted_connection.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using test::ToolRun;

TEST_F(SqlCommand, SendsTheTextAsItIs) {
  const std::string text = "select 'ä' -- x\r\n";
  EXPECT_EQ(run({text, "--server", "S", "--database", "D"}).status, exitDone);
  EXPECT_EQ(server.executed, std::vector<std::string>{text});
  EXPECT_EQ(server.opened,
            std::vector<std::string>{"Provider=SQLOLEDB; Server=S; Database=D; Integrated Security=SSPI;"});
}

TEST_F(SqlCommand, TakesTheTextFromAQueryFile) {
  writeFileAtomically(folder / "q.vqf",
                      "select 'Gr\xFC\xDF"
                      "e'\rfrom x");
  EXPECT_EQ(run({"--file", file("q.vqf")}).status, exitDone);
  EXPECT_EQ(server.executed, std::vector<std::string>{"select 'Grüße'\r\nfrom x\r\n"});
}

TEST_F(SqlCommand, NeedsAFileAndAFormatThatThereAre) {
  const ToolRun nowhere = run({"q", "--output", ""});
  EXPECT_EQ(nowhere.status, exitOutput);
  EXPECT_NE(nowhere.err.find("a file without a name"), std::string::npos) << nowhere.err;
  const ToolRun unknown = run({"q", "--format", "docx"});
  EXPECT_EQ(unknown.status, exitWrongUsage);
  for (const std::string& format : allFormats)
    EXPECT_NE(unknown.err.find(" " + format), std::string::npos) << unknown.err;
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(SqlCommand, NeedsExactlyOneText) {
  writeFileAtomically(folder / "q.vqf", "select 1");
  EXPECT_EQ(run({}).status, exitWrongUsage);
  EXPECT_EQ(run({"select 1", "--file", file("q.vqf")}).status, exitWrongUsage);
  EXPECT_EQ(run({"select 1", "select 2"}).status, exitWrongUsage);
  const ToolRun absent = run({"--file", file("absent.vqf")});
  EXPECT_EQ(absent.status, exitWrongUsage);
  EXPECT_NE(absent.err.find("absent.vqf cannot be read: " +
                            systemMessage(systemErrorNumber(std::errc::no_such_file_or_directory))),
            std::string::npos)
      << absent.err;
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(SqlCommand, AnEmptyTextIsNoQuery) {
  writeFileAtomically(folder / "empty.vqf", "\r\n");
  for (const char* text : {"", "  ", "\t\r\n"}) {
    const ToolRun tool = run({text});
    EXPECT_EQ(tool.status, exitWrongUsage);
    EXPECT_EQ(tool.err.find("korvel-audit: the query is empty\n"), 0U) << tool.err;
  }
  const ToolRun fromFile = run({"--file", file("empty.vqf")});
  EXPECT_EQ(fromFile.status, exitWrongUsage);
  EXPECT_NE(fromFile.err.find("empty.vqf holds no query"), std::string::npos) << fromFile.err;
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(SqlCommand, HelpTeaches) {
  const ToolRun tool = run({"--help"});
  EXPECT_EQ(tool.status, exitDone);
  for (const char* part :
       {"TEXT", "--file", "--server", "--database", "--format", "--output", "Examples:", "exit status"})
    EXPECT_NE(tool.out.find(part), std::string::npos) << part;
}

TEST_F(SqlCommand, WritesEveryFormat) {
  EXPECT_EQ(run({"q", "--format", "csv"}).out, "Nr,Text,Text\r\n10,\" a,b \",\r\n9,\"\",\"\"\"x\"\"\r\n|\"\r\n");
  EXPECT_EQ(run({"q", "--format", "json"}).out,
            "[\n{\"Nr\":\"10\",\"Text\":\" a,b \",\"Text_2\":null},\n"
            "{\"Nr\":\"9\",\"Text\":\"\",\"Text_2\":\"\\\"x\\\"\\r\\n|\"}\n]\n");
  EXPECT_EQ(run({"q", "--format", "text"}).out, "Nr,Text,Text,\r\n10,a,b,\r\n9,,\"x\"\r\n|\r\n");
  EXPECT_EQ(run({"q", "--format", "exchange"}).out, "Nr|Text|Text|\r\n10|a,b|\r\n9||\"x\"\r\n|\r\n");
  EXPECT_EQ(run({"q"}).out, "Nr  Text  Text\n--  ----  --------\n10  a,b\n9         \"x\"\\r\\n|\n");
  EXPECT_EQ(run({"q", "--format", "csv"}).err, "");
}

TEST_F(SqlCommand, NoRecordsIsReported) {
  server.answer[0].rows.clear();
  writeFileAtomically(folder / "out", "earlier");
  for (const std::string& format : allFormats) {
    for (const std::string& target : {std::string("-"), file("out"), file("new")}) {
      const ToolRun tool = run({"q", "--format", format, "--output", target});
      EXPECT_EQ(tool.status, exitNoRecords) << format;
      EXPECT_EQ(tool.out, "") << format;
      EXPECT_EQ(tool.err, "korvel-audit: No Records Found for Query\n");
    }
  }
  EXPECT_EQ(readFile(folder / "out"), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SqlCommand, FailureOfTheDatabaseIsReportedWithNumberLineAndText) {
  server.refusesExecution = [] { throw Error(102, "Incorrect syntax\nnear \x1B[31m'x'.", 4); };
  for (const char* format : {"table", "csv"}) {
    const ToolRun tool = run({"q", "--format", format});
    EXPECT_EQ(tool.status, exitDatabase);
    EXPECT_EQ(tool.out, "");
    EXPECT_EQ(tool.err, "korvel-audit: database error 102 in line 4: Incorrect syntax\\nnear \\x1B[31m'x'.\n");
  }
  server.refusesConnection = [] { throw Error(17, "no server"); };
  EXPECT_EQ(run({"q", "--format", "csv"}).err, "korvel-audit: database error 17: no server\n");
}

TEST_F(SqlCommand, FailureHalfWayLeavesFilesAsTheyWere) {
  writeFileAtomically(folder / "out", "earlier");
  server.answer[0].breaksOff = [] { throw Error(10054, "connection reset"); };
  for (const std::string& format : allFormats) {
    const ToolRun tool = run({"q", "--format", format, "--output", file("out")});
    EXPECT_EQ(tool.status, exitDatabase) << format;
    EXPECT_EQ(tool.err, "korvel-audit: database error 10054: connection reset\n");
  }
  EXPECT_EQ(readFile(folder / "out"), "earlier");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SqlCommand, WritesAFileWhole) {
  for (const std::string& format : allFormats) {
    EXPECT_EQ(run({"q", "--format", format, "--output", file("out")}).status, exitDone) << format;
    // Pages and workbooks contain the time of their creation.
    const std::string again = run({"q", "--format", format}).out;
    const std::size_t compared = outputFormatNamed(format)->isBinary ? 4 : again.size();
    EXPECT_EQ(readFile(folder / "out").substr(0, compared), again.substr(0, compared)) << format;
    EXPECT_FALSE(again.empty()) << format;
  }
}

/// Records how many rows the server had offered when the first bytes came.
class NotingBuffer final : public std::streambuf {
 public:
  explicit NotingBuffer(const test::ScriptedServer& server) : server_(server) {}
  std::size_t rowsAtFirstBytes = 0;

 protected:
  int overflow(int c) override {
    note();
    return c;
  }
  std::streamsize xsputn(const char*, std::streamsize size) override {
    note();
    return size;
  }

 private:
  void note() {
    if (rowsAtFirstBytes == 0) rowsAtFirstBytes = server_.rowsOffered;
  }
  const test::ScriptedServer& server_;
};

TEST_F(SqlCommand, WritesWhileTheAnswerArrives) {
  constexpr std::size_t rows = 50'000;
  server.answer[0].rows.assign(rows, {"1", "some text", "some more text"});
  for (const std::string& format : flowingFormats) {
    server.rowsOffered = 0;
    NotingBuffer buffer(server);
    std::ostream out(&buffer);
    std::ostringstream err;
    EXPECT_EQ(runTool({"sql", "q", "--format", format}, out, err, server.connector()), exitDone);
    EXPECT_GT(buffer.rowsAtFirstBytes, 0U);
    EXPECT_LT(buffer.rowsAtFirstBytes, rows / 2) << format;
  }
}

TEST_F(SqlCommand, ValuesOfAnySizeAreWrittenWhole) {
  const std::string large(3'000'000, '"');
  server.answer[0].rows = {{"1", large, "\xFF"}, {"2", "12345678,", "1234567\n"}, {"3", "1234567890123,56", "'"}};
  EXPECT_EQ(run({"q", "--format", "csv"}).out,
            "Nr,Text,Text\r\n1,\"" + large + large +
                "\",\xFF\r\n2,\"12345678,\",\"1234567\n\"\r\n3,\"1234567890123,56\",'\r\n");
  EXPECT_EQ(json::parse(run({"q", "--format", "json"}).out).at(0).at("Text"), large);
  EXPECT_EQ(json::parse(run({"q", "--format", "json"}).out).at(0).at("Text_2"), "\uFFFD");
}

TEST_F(SqlCommand, OutputThatFailsIsAnOutputFailure) {
  for (const std::string& format : allFormats) {
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(runTool({"sql", "q", "--format", format}, out, err, server.connector()), exitOutput) << format;
    EXPECT_NE(err.str().find("cannot write standard output"), std::string::npos) << err.str();
    EXPECT_EQ(run({"q", "--format", format, "--output", file("absent/out")}).status, exitOutput) << format;
    EXPECT_EQ(run({"q", "--format", format, "--output", folder.path().string()}).status, exitOutput) << format;
  }
}

TEST_F(SqlCommand, AReportIsThatOfTheCustomPage) {
  const ToolRun tool = run({"q", "--format", "html"});
  EXPECT_NE(tool.out.find("<p align=\"center\">Custom Audits</p>\r\n"), std::string::npos) << tool.out;
  EXPECT_NE(tool.out.find(">a,b<"), std::string::npos) << tool.out;
  server.answer[0].rows = {{"ポ", "", ""}};
  EXPECT_NE(run({"q", "--format", "html"}).err.find("stand as \"?\": 1"), std::string::npos);
}

TEST_F(SqlCommand, ATargetThatCannotBeWrittenIsReportedBeforeTheQuery) {
  for (const std::string& format : allFormats)
    EXPECT_EQ(run({"q", "--format", format, "--output", file("absent/out")}).status, exitOutput) << format;
  EXPECT_TRUE(server.opened.empty());
}

TEST_F(SqlCommand, AnOutputsFailureIsNotExplainedByTheQuery) {
  server.refusesExecution = [] { errno = ENOENT; };
  std::ostringstream out;
  std::ostringstream err;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(runTool({"sql", "q", "--format", "csv"}, out, err, server.connector()), exitOutput);
  EXPECT_EQ(err.str().find("No such file"), std::string::npos) << err.str();
}

TEST_F(SqlCommand, NeverReplacesADatabase) {
  const std::string bytes("SQLite format 3\0and pages", 25);
  writeFileAtomically(folder / "Korvel_Audit.db", bytes);
  EXPECT_EQ(run({"q", "--format", "csv", "--output", file("Korvel_Audit.db")}).status, exitWrongUsage);
  EXPECT_EQ(readFile(folder / "Korvel_Audit.db"), bytes);
  EXPECT_TRUE(server.opened.empty());
}

}  // namespace
}  // namespace korvel::cli
