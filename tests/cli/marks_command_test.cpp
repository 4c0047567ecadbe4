#include "cli/marks_command.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "db/connection_string.h"
#include "evidence/row_reviews.h"
#include "query/standard_query.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

using evidence::MarkKind;
using evidence::NewMark;
using evidence::ReviewFile;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class MarksCommand : public testing::Test {
 protected:
  MarksCommand() {
    writeAuditDatabase(folder / "D.db", {{1, "2004-03-09 12:00:00.000", "UATable", "UPDATE", "CS"},
                                         {2, "2004-03-09 12:00:01.000", "UATable", "UPDATE", "CS"},
                                         {3, "2004-03-09 12:00:02.000", "UATable", "UPDATE", "CS"}});
    ReviewFile::create(file(), {folder.path().string(), "D"}, "a program");
    query::ResultLists lists = query::makeResultLists();
    query::FilterTree tree;
    tree.selectAll();
    const std::string connection = db::buildConnectionString(folder.path().string(), "D");
    (void)query::runStandardQuery({tree, {}, connection}, db::openConnection, lists, 0, [] { return true; });
    auto identifier = evidence::RecordIdentifier::of(lists[0]).value();
    std::vector<NewMark> marks;
    for (std::size_t row = 0; row < 2; ++row) {
      const auto identity = identifier.identityOf(lists[0].rowId({row}));
      marks.push_back({identity.number, identity.digest, row == 0 ? MarkKind::reviewed : MarkKind::question, "why?"});
    }
    ReviewFile(file(), std::nullopt, ReviewFile::Use::mark).add(marks);
  }
  [[nodiscard]] std::filesystem::path file() const { return folder / "batch.review"; }
  [[nodiscard]] ToolRun marks(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"marks", file().string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runTool(arguments);
  }
  TemporaryFolder folder;
};

TEST_F(MarksCommand, WritesWhatReviewersSaid) {
  const ToolRun run = marks({"--format", "csv"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, StartsWith("State,"));
  EXPECT_THAT(run.out, HasSubstr("\r\nQuestion,2,,Question,why?,"));
  EXPECT_THAT(run.out, HasSubstr("\r\nReviewed,1,,Reviewed,why?,"));
  EXPECT_EQ(run.err, "Reviewed: 1\nOpen questions: 1\n");
}

TEST_F(MarksCommand, AsksTheTrailThatWasReviewed) {
  const ToolRun run = marks({"--with-trail", "--format", "json"});
  EXPECT_EQ(run.status, 0) << run.err;
  const auto json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["answer"]["records"], 3);
  EXPECT_EQ(json["answer"]["notReviewed"], 1);
  EXPECT_THAT(run.err, HasSubstr("1 of 3 reviewed\nOpen questions: 1\nChanged since reviewed: 0\n"));
  DatabaseWriter(folder / "D.db").run("UPDATE Korvel_Audit_Trails SET NewValue = 'another' WHERE Nr = 1");
  EXPECT_THAT(marks({"--with-trail", "--format", "csv"}).out,
              HasSubstr("\r\nChanged since reviewed,1,2004-03-09 12:00:00.000 UPDATE item: old -> another,Reviewed,"));
}

TEST_F(MarksCommand, RefusesAnotherTrail) {
  writeAuditDatabase(folder / "E.db", {{1, "2004-03-09 12:00:00.000", "UATable", "UPDATE", "CS"}});
  const std::string output = (folder / "report.csv").string();
  const ToolRun run = marks({"--with-trail", "--database", "E", "--format", "csv", "--output", output});
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(run.err, HasSubstr("is of another audit trail: database D on "));
  EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(MarksCommand, NamesAMarkThatWasChangedAndWritesNothing) {
  DatabaseWriter(file()).run(
      "DROP TRIGGER Korvel_Review_Marks_Stay; UPDATE Korvel_Review_Marks SET Kind = 'reviewed' WHERE Place = 2");
  const ToolRun run = marks();
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("was changed by another program: mark 2 is not as it was written"));
  EXPECT_EQ(run.out, "");
}

TEST_F(MarksCommand, RefusesWrongUse) {
  EXPECT_EQ(runTool({"marks"}).status, 2);
  EXPECT_EQ(marks({"--database", "D"}).status, 2);
  EXPECT_EQ(runTool({"marks", (folder / "none").string()}).status, 3);
  EXPECT_THAT(runTool({"marks", (folder / "none").string()}).err, HasSubstr("does not exist"));
  EXPECT_THAT(runTool({"marks", (folder / "D.db").string()}).err, HasSubstr("is no review file"));
}

}  // namespace
}  // namespace korvel::test
