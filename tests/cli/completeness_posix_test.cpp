#include <gmock/gmock.h>

#include "base/text.h"
#include "tests/cli/completeness_fixture.h"
#include "tests/support/program_output.h"

namespace korvel::cli {
namespace {

TEST_F(WrittenAnswer, SaysOnItsFirstPageWhetherItIsComplete) {
  for (const AnswerState& state : answerStates()) {
    SCOPED_TRACE(state.name);
    expectSaid(state, write(state, "pdf"));
    // Sentences are broken where a line is full.
    std::string page = replaceAll(test::outputOf("pdftotext -l 1 -raw '" + file.string() + "' -"), "\n", " ");
    page = replaceAll(std::move(page), "\xEF\xAC\x81", "fi");  // one letter of the font
    const std::string whole = state.beyondLimit ? "complete: completed beyond the limit of 5,000"
                                                : "complete: the limit of 5,000 records was not";
    const std::string cut = state.beyondLimit ? "INCOMPLETE: not all records beyond the limit of 5,000 could be loaded"
                                              : "INCOMPLETE: the limit of 5,000 was reached in: ALL Audits";
    EXPECT_THAT(page, testing::HasSubstr(state.isComplete ? whole : cut));
    EXPECT_EQ(page.find("INCOMPLETE") == std::string::npos, state.isComplete);
    for (const std::string& remark : state.remarks)
      if (remark.find("chosen") != std::string::npos) {
        EXPECT_THAT(page, testing::HasSubstr(remark));
      }
  }
}

}  // namespace
}  // namespace korvel::cli
