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
    for (const std::string& remark : state.remarks) EXPECT_THAT(page, testing::HasSubstr(remark));
  }
}

}  // namespace
}  // namespace korvel::cli
