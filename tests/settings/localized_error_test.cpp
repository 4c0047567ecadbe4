#include "settings/string_table.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace korvel::settings {
namespace {

const LanguageOffset english("0");
const LanguageOffset german("10000");

TEST(ExplainedError, SpeaksEnglishUntilItIsDescribed) {
  const Error error = localizedError(11001, "failure.hostUnknown", {"plant7"});
  EXPECT_EQ(error.number(), 11001);
  EXPECT_EQ(error.description(), describe(error, english));
  EXPECT_NE(error.description().find("plant7"), std::string::npos);
}

TEST(ExplainedError, IsDescribedInTheUsersLanguage) {
  const Error error = localizedError(11001, "failure.hostUnknown", {"plant7"});
  EXPECT_NE(describe(error, german), error.description());
  EXPECT_NE(describe(error, german).find("plant7"), std::string::npos);
}

TEST(ExplainedError, ArgumentsAreFilledInOnce) {
  const Error error = localizedError(1, "failure.portClosed", {"%2", "%1 refused"});
  const std::string& text = error.description();
  EXPECT_NE(text.find("%1 refused"), std::string::npos);
  EXPECT_EQ(text.find("%2"), 0U) << "the first place holds what looks like the second";
}

TEST(ExplainedError, AnEnginesOwnTextStaysAsItIs) {
  const Error error(208, "Invalid object name 'x'.");
  EXPECT_EQ(describe(error, german), "Invalid object name 'x'.");
}

TEST(ExplainedError, AKeyThatTheTableDoesNotHaveIsACallersMistake) {
  EXPECT_THROW((void)localizedError(1, "failure.nonsense"), std::out_of_range);
}

}  // namespace
}  // namespace korvel::settings
