// The commands snapshot and compare.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "base/atomic_file.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SnapshotCommand : public testing::Test {
 protected:
  SnapshotCommand() {
    std::filesystem::create_directories(folder / "plant");
    std::vector<AuditEntry> entries;
    for (int i = 1; i <= 1500; ++i) entries.push_back({i, "2004-03-07 00:00:00.000", "UATable", "UPDATE", "CS"});
    writeAuditDatabase(trail, entries);
  }

  void change(const std::string& sql) const { DatabaseWriter(trail).run(sql); }
  ToolRun snapshot(std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments = {"snapshot", "--server", (folder / "plant").string(), "--database", "D",
                                          "--output", taken};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runTool(arguments);
  }
  ToolRun compare(std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments = {"compare", taken};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runTool(arguments);
  }

  TemporaryFolder folder;
  std::filesystem::path trail = folder / "plant" / "D.db";
  std::string taken = (folder / "taken").string();
};

TEST_F(SnapshotCommand, SaysWhatItWroteAndWhatThereIsToContinue) {
  const ToolRun run = snapshot();
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("D.db: 1,500 rows\n"));
  EXPECT_EQ(run.err, "");
  const ToolRun again = snapshot();
  EXPECT_EQ(again.status, 3);
  EXPECT_THAT(again.err, HasSubstr("will not replace"));
}

TEST_F(SnapshotCommand, IsOpenedLikeAnyDatabase) {
  snapshot({"--quiet"});
  const ToolRun run = runTool({"query", "--server", taken, "--database", "D", "--format", "csv", "--quiet"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1501);
}

TEST_F(SnapshotCommand, ComparesEqualAndWithNewerRows) {
  snapshot();
  const ToolRun equal = compare();
  EXPECT_EQ(equal.status, 0) << equal.err;
  EXPECT_EQ(equal.out, "");
  EXPECT_THAT(equal.err, HasSubstr("UNCHANGED: all rows of the snapshot (1,500) are in the trail as they were"));
  change("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (1501)");
  const ToolRun newer = compare();
  EXPECT_EQ(newer.status, 0) << newer.err;
  EXPECT_THAT(newer.err, HasSubstr("1 row is newer"));
  EXPECT_EQ(compare({"--quiet"}).err, "");
}

TEST_F(SnapshotCommand, NamesWhatDiffers) {
  snapshot();
  change("UPDATE Korvel_Audit_Trails SET NewValue = 'x' WHERE Nr = 1000; DELETE FROM Korvel_Audit_Trails WHERE Nr = 7");
  const ToolRun run = compare({"--format", "csv"});
  EXPECT_EQ(run.status, 5);
  EXPECT_THAT(run.err, HasSubstr("DIFFERENT: 1 changed, 1 removed; rows in the snapshot: 1,500"));
  EXPECT_THAT(run.err, HasSubstr("In the trail by itself: 1 entry number is missing"));
  EXPECT_THAT(run.out, StartsWith("Finding,Entry ID,Column,In the Snapshot,Now\r\nremoved,7,Nr,7,\r\n"));
  EXPECT_THAT(run.out, HasSubstr("\nchanged,1000,NewValue,\"\",x\r\n"));
  EXPECT_THAT(run.out, HasSubstr("\nnumbers missing,7,Nr,,\r\n"));
}

TEST_F(SnapshotCommand, ComparesForPeopleInALineForARow) {
  snapshot();
  change("UPDATE Korvel_Audit_Trails SET NewValue = 'x' WHERE Nr = 1000; DELETE FROM Korvel_Audit_Trails WHERE Nr = 7");
  const ToolRun run = compare();
  EXPECT_EQ(run.status, 5);
  // Header, line, removed row, changed value, missing number.
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 5) << run.out;
  EXPECT_THAT(run.out, HasSubstr("2004-03-07 00:00:00.000 · user · UATable · field · UPDATE · old →"));
  EXPECT_THAT(compare({"--format", "json"}).out, HasSubstr("\"format\": \"korvel-audit-comparison\""));
}

TEST_F(SnapshotCommand, ComparesWithAnotherTrail) {
  snapshot();
  std::filesystem::create_directories(folder / "other");
  std::filesystem::copy_file(trail, folder / "other" / "E.db");
  EXPECT_EQ(compare({"--server", (folder / "other").string(), "--database", "E"}).status, 0);
  EXPECT_EQ(compare({"--server", (folder / "other").string()}).status, 3);
}

TEST_F(SnapshotCommand, ComparesARangeWithItsRows) {
  change("UPDATE Korvel_Audit_Trails SET DateTime = '2004-03-09 12:00:00.000' WHERE Nr > 1400");
  EXPECT_THAT(snapshot({"--from", "2004-03-08", "--to", "2004-03-09"}).out, HasSubstr(": 100 rows"));
  EXPECT_EQ(compare().status, 0);
  change("UPDATE Korvel_Audit_Trails SET DateTime = '2004-03-09 13:00:00.000' WHERE Nr = 3");
  const ToolRun run = compare({"--format", "csv"});
  EXPECT_EQ(run.status, 5);
  EXPECT_THAT(run.out, HasSubstr("inserted,3,"));
}

TEST_F(SnapshotCommand, ASnapshotThatWasChangedItselfIsADifference) {
  snapshot();
  const std::filesystem::path file = folder / "taken" / "D.db";
  std::filesystem::permissions(file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
  for (const auto& database : {file, trail})
    DatabaseWriter(database).run("UPDATE Korvel_Audit_Trails SET OldValue = 'x' WHERE Nr = 3");
  const ToolRun run = compare();
  EXPECT_EQ(run.status, 5);
  EXPECT_THAT(run.err, HasSubstr("the snapshot itself is not as it was taken: row 3 was changed"));
}

TEST_F(SnapshotCommand, ABagIsFoundByItsFolder) {
  EXPECT_EQ(snapshot({"--bag"}).status, 0);
  EXPECT_EQ(compare().status, 0);
}

TEST_F(SnapshotCommand, SaysWhatIsNoSnapshot) {
  const ToolRun database = runTool({"compare", trail.string()});
  EXPECT_EQ(database.status, 3);
  EXPECT_THAT(database.err, HasSubstr("is a database, and no snapshot"));
  EXPECT_THAT(runTool({"compare", folder.path().string()}).err, HasSubstr("There is no snapshot in "));
  EXPECT_THAT(runTool({"compare", (folder / "nothing.db").string()}).err, HasSubstr("nothing.db"));
  EXPECT_THAT(runTool({"compare", (folder / "plant" / "x.txt").string()}).err, HasSubstr("does not end in .db"));
  std::filesystem::copy_file(trail, folder / "plant" / "E.db");
  EXPECT_THAT(runTool({"compare", (folder / "plant").string()}).err, HasSubstr("several databases"));
}

TEST_F(SnapshotCommand, RefusesWrongUse) {
  EXPECT_EQ(runTool({"snapshot"}).status, 2);
  EXPECT_EQ(runTool({"compare"}).status, 2);
  EXPECT_EQ(snapshot({"--from", "2004-03-09", "--to", "2004-03-08"}).status, 2);
  EXPECT_EQ(compare({"--output", trail.string()}).status, 2);
}

}  // namespace
}  // namespace korvel::test
