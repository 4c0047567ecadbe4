#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "cli/output_formats.h"
#include "db/procedure/audit_conditions.h"
#include "tests/cli/query_command_fixture.h"

namespace korvel::cli {

/// How an answer came about, and what has to be said of it.
struct AnswerState {
  std::string name;
  std::vector<std::string> options{};
  bool reachesLimit = false;
  bool refusesTable = false;
  int status = 0;
  bool isComplete = true;
  bool beyondLimit = false;
  std::vector<std::string> filters{};
  /// Sentences that stand on standard error, with the manifest's notes, and where an output has a place for them.
  std::vector<std::string> said{};
  std::vector<std::string> remarks{};  ///< the same in an output and in the manifest
};

inline std::vector<AnswerState> answerStates() {
  const std::string cut = "5000-row limit of an answer reached: there may be more records";
  const std::string noted = "the most that the procedure returns";
  const std::vector<std::string> where{"--where", "Audit Type=CS"};
  const std::string filter = "Audit Type = \"CS\"";
  return {
      {.name = "complete"},
      {.name = "cut", .reachesLimit = true, .isComplete = false, .said = {noted}, .remarks = {cut}},
      {.name = "filtered",
       .options = where,
       .filters = {filter},
       .said = {"2 of 4 records chosen"},
       .remarks = {"2 of 4 records chosen: " + filter}},
      {.name = "cut and filtered",
       .options = where,
       .reachesLimit = true,
       .isComplete = false,
       .filters = {filter},
       .said = {noted, "4,998 of 5,000 records chosen"},
       .remarks = {cut, "4,998 of 5,000 records chosen: " + filter}},
      {.name = "completed",
       .options = {"--complete"},
       .reachesLimit = true,
       .beyondLimit = true,
       .said = {"complete: 5,000 records"},
       .remarks = {"complete: 5,000 records"}},
      {.name = "completed and filtered",
       .options = {"--complete", "--find", "ZZ"},
       .reachesLimit = true,
       .beyondLimit = true,
       .filters = {"find \"ZZ\""},
       .said = {"complete: 5,000 records", "1 of 5,000 records chosen"},
       .remarks = {"complete: 5,000 records", "1 of 5,000 records chosen: find \"ZZ\""}},
      {.name = "not completed",
       .options = {"--complete"},
       .reachesLimit = true,
       .refusesTable = true,
       .status = 5,
       .isComplete = false,
       .beyondLimit = true,
       .said = {"incomplete: 5,000 records", "The SELECT permission was denied."},
       .remarks = {"incomplete: 5,000 records"}},
  };
}

/// Writes an answer in each state.
struct WrittenAnswer : QueryCommand {
  test::ToolRun write(const AnswerState& state, std::string_view format) {
    auto& rows = server.answer[0].rows;
    const std::vector<test::ScriptedRow> four{test::auditRow("10", "CS"), test::auditRow("9", "RT"),
                                              test::auditRow("100", "CS"), test::auditRow("11", "ZZ")};
    rows = four;
    if (state.reachesLimit) rows.resize(db::rowLimitPerResult, test::auditRow("1", "CS"));
    server.refusesExecution = [this, refuses = state.refusesTable] {
      if (refuses && server.executed.back().starts_with("SELECT"))
        throw Error(229, "The SELECT permission was denied.");
    };
    std::vector<std::string> options = state.options;
    options.insert(options.end(),
                   {"--quiet", "--format", std::string(format), "--output", utf8FromPath(file), "--manifest"});
    return run(options);
  }

  /// What standard error and the manifest say of an answer that was written.
  void expectSaid(const AnswerState& state, const test::ToolRun& done) {
    using testing::Contains;
    using testing::HasSubstr;
    EXPECT_EQ(done.status, state.status);
    for (const std::string& sentence : state.said) EXPECT_THAT(done.err, HasSubstr(sentence));
    const nlohmann::json told = manifest();
    EXPECT_EQ(told["complete"], state.isComplete);
    EXPECT_EQ(told["question"]["beyondLimit"], state.beyondLimit);
    EXPECT_EQ(told["question"].value("filters", std::vector<std::string>{}), state.filters);
    EXPECT_EQ(told.contains("limitReached"), !state.isComplete);
    const auto notes = told.value("notes", std::vector<std::string>{});
    for (const std::string& remark : state.remarks) EXPECT_THAT(notes, Contains(HasSubstr(remark)));
    EXPECT_EQ(notes.empty(), state.remarks.empty());
    const auto denied = std::count_if(notes.begin(), notes.end(), [](const std::string& note) {
      return note.find("The SELECT permission was denied.") != std::string::npos;
    });
    EXPECT_EQ(denied > 0, state.refusesTable);
    EXPECT_EQ(told["rows"]["stamps"]["column"], "DateTime");
    EXPECT_EQ(told["rows"]["stamps"]["summerTimeColumn"], "T1");
  }
  nlohmann::json manifest() { return nlohmann::json::parse(readFile(file.string() + ".manifest.json")); }

  std::filesystem::path file = folder / "answer";
};

}  // namespace korvel::cli
