// Whether an answer is all that was asked for stands beside each output, and in it where it has a place for it.

#include <gmock/gmock.h>

#include <algorithm>

#include "base/atomic_file.h"
#include "base/text.h"
#include "tests/cli/completeness_fixture.h"
#include "tests/support/zip_part.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* stampSentence = "Time stamps are the plant's local time";

/// The comments in a workbook's properties.
std::string commentsOf(const std::filesystem::path& workbook) {
  std::string text = test::partOfZip(readFile(workbook), "docProps/core.xml");
  return replaceAll(std::move(text), "&quot;", "\"");
}

TEST_F(WrittenAnswer, SaysBesideEachFormatWhetherItIsComplete) {
  for (const AnswerState& state : answerStates())
    for (const OutputFormat& format : outputFormats()) {
      SCOPED_TRACE(state.name + " as " + std::string(format.name));
      const test::ToolRun done = write(state, format.name);
      EXPECT_EQ(done.status, state.status);
      for (const std::string& sentence : state.said) EXPECT_THAT(done.err, HasSubstr(sentence));
      const json told = json::parse(readFile(file.string() + ".manifest.json"));
      EXPECT_EQ(told["complete"], state.isComplete);
      EXPECT_EQ(told["question"]["beyondLimit"], state.beyondLimit);
      EXPECT_EQ(told["question"].value("filters", std::vector<std::string>{}), state.filters);
      EXPECT_EQ(told.contains("limitReached"), !state.isComplete);
      const auto notes = told.value("notes", std::vector<std::string>{});
      for (const std::string& remark : state.remarks) EXPECT_THAT(notes, Contains(HasSubstr(remark)));
      EXPECT_EQ(notes.empty(), state.remarks.empty());
      const auto denied = std::find_if(notes.begin(), notes.end(), [](const std::string& note) {
        return note.find("The SELECT permission was denied.") != std::string::npos;
      });
      EXPECT_EQ(denied != notes.end(), state.refusesTable);
      EXPECT_EQ(told["rows"]["stamps"]["column"], "DateTime");
      EXPECT_EQ(told["rows"]["stamps"]["summerTimeColumn"], "T1");
    }
}

TEST_F(WrittenAnswer, SaysInAWorkbookWhetherItIsComplete) {
  for (const AnswerState& state : answerStates()) {
    SCOPED_TRACE(state.name);
    write(state, "xlsx");
    const std::string comments = commentsOf(file);
    for (const std::string& remark : state.remarks) EXPECT_THAT(comments, HasSubstr(remark));
    EXPECT_THAT(comments, HasSubstr(stampSentence));
  }
}

/// Their layouts are fixed: what is to be said stands beside them.
TEST_F(WrittenAnswer, LeavesOtherFormatsAsTheyAre) {
  for (const std::string_view format : {"table", "text", "exchange", "csv", "json", "html"}) {
    for (const AnswerState& state : answerStates()) {
      SCOPED_TRACE(state.name + " as " + std::string(format));
      write(state, format);
      const std::string bytes = readFile(file);
      for (const std::string& remark : state.remarks) EXPECT_THAT(bytes, Not(HasSubstr(remark)));
      EXPECT_THAT(bytes, Not(HasSubstr(stampSentence)));
    }
  }
}

/// A query of the user's own, whose limits nobody knows: rows that were chosen are said.
TEST_F(WrittenAnswer, OfAnotherQuerySaysWhatWasChosen) {
  for (const OutputFormat& format : outputFormats())
    for (const bool filtered : {false, true}) {
      SCOPED_TRACE(std::string(format.name) + (filtered ? " filtered" : ""));
      std::vector<std::string> options{"sql",      "select",           "--format",  std::string(format.name),
                                       "--output", utf8FromPath(file), "--manifest"};
      if (filtered) options.insert(options.end(), {"--where", "AuditType=CS"});
      const test::ToolRun done = test::runTool(options, server.connector());
      EXPECT_EQ(done.status, 0);
      const std::string chosen = "2 of 4 records chosen";
      EXPECT_EQ(done.err.find(chosen) != std::string::npos, filtered);
      const json told = json::parse(readFile(file.string() + ".manifest.json"));
      EXPECT_FALSE(told.contains("complete"));
      EXPECT_EQ(told["question"].contains("filters"), filtered);
      EXPECT_EQ(told.contains("notes"), filtered);
      EXPECT_EQ(told["rows"]["stamps"]["column"], "DateTime");
      if (format.name != "xlsx") continue;
      EXPECT_EQ(commentsOf(file).find(chosen) != std::string::npos, filtered);
      EXPECT_THAT(commentsOf(file), HasSubstr(stampSentence));
    }
  server.answer = {{{{"EventType"}, {"n"}}, {{"UPDATE", "3"}}, {}}};
  ASSERT_EQ(test::runTool({"sql", "select", "--format", "xlsx", "--output", utf8FromPath(file), "--manifest"},
                          server.connector())
                .status,
            0);
  EXPECT_FALSE(json::parse(readFile(file.string() + ".manifest.json"))["rows"].contains("stamps"));
  EXPECT_THAT(commentsOf(file), Not(HasSubstr(stampSentence)));
}

}  // namespace
}  // namespace korvel::cli
