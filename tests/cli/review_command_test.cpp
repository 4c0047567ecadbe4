#include "cli/review_command.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ReviewCommand : public testing::Test {
 protected:
  ReviewCommand() {
    std::vector<AuditEntry> entries;
    for (int i = 1; i <= 6000; ++i)
      entries.push_back({i, "2004-03-09 12:00:00.000", "UATable", i == 5500 ? "DELETE" : "UPDATE", "CS"});
    entries.push_back({6002, "2004-03-09 20:00:00.000", "UATable", "UPDATE", "CS"});
    writeAuditDatabase(folder / "D.db", entries);
  }
  ToolRun review(std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments = {"review", "--server", folder.path().string(), "--database", "D"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runTool(arguments);
  }
  TemporaryFolder folder;
};

TEST_F(ReviewCommand, LooksBeyondTheLimitAndSaysWhatItFound) {
  const ToolRun run = review({"--rules", "deletion,numbers-missing", "--format", "csv"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("Finding,"));
  EXPECT_THAT(run.out, HasSubstr("\r\nDeletions,5500,"));
  EXPECT_THAT(run.out, HasSubstr("\r\nEntry numbers missing before it,6002,"));
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 3);
  EXPECT_THAT(run.err, HasSubstr("\nDeletions: 1\nEntry numbers missing before it: 1\n"));
  EXPECT_THAT(run.err, Not(HasSubstr("Outside working hours")));
}

TEST_F(ReviewCommand, HasWorkingHoursOfItsOwn) {
  const auto count = [this](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"--rules", "outside-hours", "--format", "csv", "--quiet"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolRun run = review(arguments);
    return std::count(run.out.begin(), run.out.end(), '\n') - 1;
  };
  EXPECT_EQ(count({}), 1);
  EXPECT_EQ(count({"--hours", "13:00-24:00"}), 6000);
  EXPECT_EQ(count({"--days", "mon,WED"}), 6001);
}

TEST_F(ReviewCommand, SaysWhereMissingNumbersWereNotLookedFor) {
  const ToolRun dates = review({"--from", "2004-03-09", "--to", "2004-03-09", "--rules", "numbers-missing"});
  EXPECT_EQ(dates.status, 1);
  EXPECT_THAT(dates.err, HasSubstr("Entry numbers missing before it: not looked for, rows were chosen"));
  EXPECT_THAT(dates.err, HasSubstr("nothing was found; nothing was written"));
}

TEST_F(ReviewCommand, RefusesWrongUse) {
  EXPECT_EQ(review({"--rules", "x"}).status, 2);
  EXPECT_THAT(review({"--rules", "x"}).err, HasSubstr("no rule; there are no-comment deletion"));
  for (const char* const hours : {"6-18", "06:00-25:00", "06:00", "06:00-06:00", "06:60-07:00", "ab:cd-07:00"})
    EXPECT_EQ(review({"--hours", hours}).status, 2) << hours;
  for (const char* const days : {"monday", "", "mon,", "mon;tue"})
    EXPECT_EQ(review({"--days", days}).status, 2) << days;
}

}  // namespace
}  // namespace korvel::test
