#include "cli/first_steps.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/db/audit_database.h"
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::ptrdiff_t commandsIn(const std::string& text) {
  std::ptrdiff_t count = 0;
  for (std::size_t at = text.find("  korvel-audit "); at != std::string::npos;
       at = text.find("  korvel-audit ", at + 1))
    ++count;
  return count;
}

TEST(FirstSteps, WithoutATrailMakeOneOrFindOne) {
  const std::string text = firstSteps({"/data", {}, {}});
  EXPECT_THAT(text, StartsWith("There is no audit trail on this computer yet."));
  EXPECT_THAT(text, AllOf(HasSubstr("korvel-audit demo "), HasSubstr("korvel-audit servers --all ")));
  EXPECT_EQ(commandsIn(text), 5);
}

TEST(FirstSteps, WithTheUsualDatabaseNameNone) {
  const std::string text = firstSteps({"/data", {"Korvel_Audit", "Korvel_Audit_MU"}, {"PLANT"}});
  EXPECT_THAT(text, StartsWith("Databases in /data: Korvel_Audit, Korvel_Audit_MU. To begin with:\n"));
  EXPECT_THAT(text, AllOf(HasSubstr("  korvel-audit review "), Not(HasSubstr("--database")), Not(HasSubstr("PLANT"))));
  EXPECT_EQ(commandsIn(text), 5);
}

TEST(FirstSteps, WithOtherDatabasesNameTheFirst) {
  EXPECT_THAT(firstSteps({"/data", {"batch 7"}, {}}), HasSubstr("korvel-audit review --database \"batch 7\" "));
}

TEST(FirstSteps, WithServersAloneNameTheFirst) {
  const std::string text = firstSteps({"/data", {}, {"PLANT\\A", "B", "C", "D", "E", "F"}});
  EXPECT_THAT(text, StartsWith("Configured servers: PLANT\\A, B, C, D, E and 1 more."));
  EXPECT_THAT(text, HasSubstr("korvel-audit review --server \"PLANT\\A\" "));
  EXPECT_EQ(commandsIn(text), 5);
}

TEST(FirstSteps, AreShownWhereNoCommandWasGiven) {
  const test::TemporaryFolder folder;
  const test::EnvironmentVariable data("KORVEL_AUDIT_DATA", folder.path().string());
  test::writeAuditDatabase(folder / "mine.db", {{1, "2004-03-09 12:00:00.000", "UATable", "UPDATE", "CS"}});
  const test::ToolRun run = test::runTool({});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, AllOf(StartsWith("korvel-audit: no command was given\n"), HasSubstr(": mine. To begin with:\n"),
                             HasSubstr("korvel-audit query --database mine ")));
}

}  // namespace
}  // namespace korvel::cli
