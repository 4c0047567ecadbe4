#include <gmock/gmock.h>

#include "base/error.h"
#include "db/embedded/embedded_connection.h"
#include "evidence/snapshot.h"
#include "tests/db/audit_database.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(SnapshotOnAFullDisk, SaysSoAndIsTakenWholeLater) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "D.db", {{1, "2004-03-07 00:00:00.100", "UATable", "1", "CS"}});
  // More than the engine holds in memory: the disk is full in the middle of a transaction.
  test::DatabaseWriter(folder / "D.db")
      .run(
          "WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < 1500) "
          "INSERT INTO Korvel_Audit_Trails (Nr, Comments) SELECT i, hex(zeroblob(32768)) FROM n");
  SnapshotOrder order;
  order.source = {"a server", "D", "", ""};
  order.folder = folder / "snapshot";
  order.connect = [&folder](std::string_view, const std::stop_token&) { return db::openEmbedded(folder.path(), "D"); };
  std::string failure;
  {
    const test::FullDisk full(1U << 20U);
    try {
      (void)takeSnapshot(order);
    } catch (const Error& error) {
      failure = error.description();
    }
  }
  EXPECT_THAT(failure, AllOf(HasSubstr("The disk is full"), HasSubstr("D.db.unfinished"), Not(HasSubstr("transaction")),
                             Not(HasSubstr("taken back"))));
  EXPECT_EQ(takeSnapshot(order).facts.rows, 1500U);
}

TEST(SnapshotInAFolder, ThatMayNotBeWrittenToSaysSoAndLeavesNothing) {
  const test::TemporaryFolder folder;
  test::writeAuditDatabase(folder / "D.db", {{1, "2004-03-07 00:00:00.100", "UATable", "1", "CS"}});
  std::filesystem::permissions(folder / "D.db", std::filesystem::perms::others_read,
                               std::filesystem::perm_options::add);
  std::filesystem::create_directory(folder / "snapshot");
  const test::OrdinaryUser user(folder.path());
  if (!user.succeeded()) GTEST_SKIP() << "the superuser has every right and may not lay it down";
  SnapshotOrder order;
  order.source = {"a server", "D", "", ""};
  order.connect = [&folder](std::string_view, const std::stop_token&) { return db::openEmbedded(folder.path(), "D"); };
  const auto failureIn = [&order](const std::filesystem::path& target) -> std::string {
    order.folder = target;
    try {
      (void)takeSnapshot(order);
    } catch (const Error& error) {
      return error.description();
    }
    return {};
  };
  std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_THAT(failureIn(folder / "snapshot"), HasSubstr("not allowed to write into the folder"));
  EXPECT_THAT(failureIn(folder / "new"), HasSubstr("not allowed to write into the folder"));
  EXPECT_TRUE(std::filesystem::is_empty(folder / "snapshot"));
  std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace korvel::evidence
