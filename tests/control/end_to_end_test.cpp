#include <sqlite3.h>

#include <memory>

#include "base/paths.h"
#include "db/open_connection.h"
#include "query/forms/sql_editor.h"
#include "tests/control/viewer_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

/// From a database file to the lists, with the real engine.
class EndToEnd : public ViewerTest {
 protected:
  EndToEnd() {
    control::platform().connect = &db::openConnection;
    sqlite3* raw = nullptr;
    EXPECT_EQ(sqlite3_open(utf8FromPath(folder / "Korvel_Audit.db").c_str(), &raw), SQLITE_OK);
    database.reset(raw);
    std::string table = "create table Korvel_Audit_Trails (Nr integer";
    for (std::size_t i = 1; i < query::auditColumnCount; ++i)
      table += ", " + std::string(query::auditColumns()[i].name) + " text";
    run(table + ")");
  }

  void run(const std::string& statement) {
    EXPECT_EQ(sqlite3_exec(database.get(), statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database.get());
  }
  void add(int number, const std::string& time, const std::string& area, const std::string& event,
           const std::string& type) {
    run("insert into Korvel_Audit_Trails (Nr, DateTime, TableName, EventType, NewValue, AuditType, Comments) values (" +
        std::to_string(number) + ", '" + time + "', '" + area + "', '" + event + "', '  new  ', '" + type +
        "', 'why')");
  }
  std::unique_ptr<AuditViewer> viewerOnFolder() {
    auto viewer = newViewer();
    viewer->setDefaultSQLServer(QString::fromStdString(folder.path().string()));
    viewer->resize(1200, 800);
    viewer->show();
    return viewer;
  }

  struct Close {
    void operator()(sqlite3* open) const { sqlite3_close(open); }
  };
  TemporaryFolder folder;
  std::unique_ptr<sqlite3, Close> database;
};

TEST_F(EndToEnd, RecordsOfAFileReachTheLists) {
  add(12, "2004-03-07 13:45:59.123", "Operator", "OPERATOR", "OA");
  add(7, "2004-03-07 13:46:00.000", "PROJECT", "CHECK_IN", "DC");
  add(100, "2004-03-08 00:00:00.000", "Korvel_Audit", "UPDATE", "AU");
  const auto viewer = viewerOnFolder();
  click(*viewer, "btQuery");
  EXPECT_EQ(lastFailure(*viewer), "");
  EXPECT_EQ(column(*viewer, 0), "7 12 100");
  EXPECT_EQ(column(*viewer, 0, 1), "2004-03-07 13:46:00.000 2004-03-07 13:45:59.123 2004-03-08 00:00:00.000");
  EXPECT_EQ(column(*viewer, 0, 10), "new new new");
  EXPECT_EQ(column(*viewer, 2), "12");
  EXPECT_EQ(column(*viewer, 3), "7");
  EXPECT_EQ(column(*viewer, 4), "100");
  // Deliberate: the last two columns of a record never reach the standard lists.
  EXPECT_EQ(column(*viewer, 0, 16).trimmed(), "");
  EXPECT_EQ(recordsPanel(*viewer), "3 Records on current tab");
}

TEST_F(EndToEnd, AnEmptyTrailHasNoRecords) {
  const auto viewer = viewerOnFolder();
  click(*viewer, "btQuery");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].text, "No records found for filter criteria");
}

TEST_F(EndToEnd, AMissingFileFailsSilentlyWithAReason) {
  const auto viewer = viewerOnFolder();
  viewer->setDatabaseType(1);
  viewer->OpenDefaultSQLServer();
  click(*viewer, "btQuery");
  EXPECT_NE(lastFailure(*viewer), "");
  EXPECT_TRUE(recorder->messages.empty());
  EXPECT_FALSE(std::filesystem::exists(folder / "Korvel_Audit_MU.db"));
}

TEST_F(EndToEnd, ACustomQueryShowsWhatItReturns) {
  add(12, "2004-03-07 13:45:59.123", "Operator", "OPERATOR", "OA");
  add(7, "2004-03-07 13:46:00.000", "PROJECT", "CHECK_IN", "DC");
  const auto viewer = viewerOnFolder();
  selectTab(*viewer, 5);
  click(*viewer, "btQuery");
  EXPECT_EQ(list(*viewer, 5)->model()->columnCount(), int(query::auditColumnCount));
  EXPECT_EQ(column(*viewer, 5), "12 7");
  // A custom list has every column, and a null is an empty cell.
  EXPECT_EQ(column(*viewer, 5, 16), "why why");
  EXPECT_EQ(column(*viewer, 5, 17), " ");

  viewer->TriggerAdvancedQuery("Select EventType,Nr from Korvel_Audit_Trails where Nr < 10");
  EXPECT_EQ(list(*viewer, 5)->model()->headerData(0, Qt::Horizontal).toString(), "EventType");
  EXPECT_EQ(column(*viewer, 5, 1), "7");
  EXPECT_TRUE(recorder->messages.empty());
  EXPECT_EQ(recordsPanel(*viewer), "1 Records on current tab");
}

TEST_F(EndToEnd, TheEnginesWordsAndTheLineOfAnErrorAreShown) {
  const auto viewer = viewerOnFolder();
  selectTab(*viewer, 5);
  auto* editor = element<query::SqlEditor>(*viewer, "txtAdvancedQuery");
  editor->setQueryText("select *\r\nfromm Korvel_Audit_Trails");
  click(*viewer, "btQuery");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_TRUE(recorder->messages[0].text.startsWith("1:Error in TriggerAdvancedQuery.  Error Message: "));
  EXPECT_TRUE(recorder->messages[0].text.contains("fromm"));
  EXPECT_EQ(editor->errorLine(), 2);
}

}  // namespace
}  // namespace korvel::test
