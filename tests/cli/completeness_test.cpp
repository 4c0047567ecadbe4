// Whether an answer is all that was asked for stands beside each output, and in it where it has a place for it.

#include <gmock/gmock.h>

#include "base/atomic_file.h"
#include "base/text.h"
#include "tests/cli/completeness_fixture.h"
#include "tests/support/zip_part.h"

namespace korvel::cli {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr const char* stampSentence = "Time stamps are the plant's local time";

/// The comments in a workbook's properties.
std::string commentsOf(const std::filesystem::path& workbook) {
  std::string text = test::partOfZip(readFile(workbook), "docProps/core.xml");
  return replaceAll(std::move(text), "&quot;", "\"");
}

/// The layouts of the other formats are fixed: what is to be said stands beside them. Pages have a test of their own.
TEST_F(WrittenAnswer, SaysBesideAndInAnOutputWhetherItIsComplete) {
  for (const AnswerState& state : answerStates())
    for (const OutputFormat& format : outputFormats()) {
      if (format.name == "pdf") continue;
      SCOPED_TRACE(state.name + " as " + std::string(format.name));
      expectSaid(state, write(state, format.name));
      const bool isWorkbook = format.name == "xlsx";
      const std::string told = isWorkbook ? commentsOf(file) : readFile(file);
      for (const std::string& remark : state.remarks) EXPECT_EQ(told.find(remark) != std::string::npos, isWorkbook);
      EXPECT_EQ(told.find(stampSentence) != std::string::npos, isWorkbook);
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
      const json told = manifest();
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
  EXPECT_FALSE(manifest()["rows"].contains("stamps"));
  EXPECT_THAT(commentsOf(file), Not(HasSubstr(stampSentence)));
}

}  // namespace
}  // namespace korvel::cli
