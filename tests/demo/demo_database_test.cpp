#include "demo/demo_database.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <utility>

#include "tests/demo/opened_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::demo {
namespace {

using test::OpenedDatabase;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* everything = "SELECT * FROM Korvel_Audit_Trails ORDER BY Nr";

/// The standard query's categories, written out.
constexpr std::array<std::pair<const char*, const char*>, 10> categories = {{
    {"KorvelExplorer", "AuditType = 'CS'"},
    {"Alarms", "AuditType = 'CS' AND (TableName LIKE 'vel_Alg%' OR TableName LIKE 'MS%')"},
    {"TagLogging", "TableName LIKE 'PDE%'"},
    {"UAcs", "AuditType = 'CS' AND TableName LIKE 'UA%'"},
    {"CustomActions", "AuditType = 'OA'"},
    {"UArt", "AuditType = 'RT' AND TableName LIKE 'UA%'"},
    {"CheckIN", "AuditType = 'DC' AND EventType = 'CHECK_IN'"},
    {"CheckOUT", "AuditType = 'DC' AND EventType = 'CHECK_OUT'"},
    {"Rollback", "AuditType = 'DC' AND EventType = 'ROLLBACK'"},
    {"Restore", "AuditType = 'DC' AND EventType = 'RESTORE'"},
}};

/// Both databases with the default number of rows, written once for all tests that only read.
class DemoDatabases : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryFolder;
    writeDemoDatabases({.folder = folder_->path()});
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }
  const OpenedDatabase single_{*folder_ / "Korvel_Audit.db"};
  const OpenedDatabase multi_{*folder_ / "Korvel_Audit_MU.db"};

  static TemporaryFolder* folder_;
};
TemporaryFolder* DemoDatabases::folder_ = nullptr;

TEST_F(DemoDatabases, HaveTheDefaultRowsAndTheEighteenColumnsInOrder) {
  for (const OpenedDatabase* database : {&single_, &multi_}) {
    EXPECT_EQ(database->count("true"), 60000);
    EXPECT_EQ(database->text("SELECT group_concat(name) FROM pragma_table_info('Korvel_Audit_Trails')"),
              "Nr,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,OldValue,"
              "NewValue,PCName,OSUser,AppUser,UserName,AuditType,Comments,T1");
    EXPECT_EQ(database->text("PRAGMA integrity_check"), "ok");
  }
}

TEST_F(DemoDatabases, HaveRowsInEveryCategoryAndSeveralBeyondTheLimit) {
  for (const OpenedDatabase* database : {&single_, &multi_}) {
    int beyond = 0;
    for (const auto& [name, condition] : categories) {
      const auto rows = database->count(condition);
      EXPECT_GT(rows, 100) << name;
      if (rows > 5000) ++beyond;
    }
    EXPECT_GE(beyond, 4);
    EXPECT_LE(beyond, 9) << "categories that come whole are worth seeing too";
  }
}

TEST_F(DemoDatabases, HaveAllFiveTypesAndAFewRowsOfNone) {
  for (const OpenedDatabase* database : {&single_, &multi_}) {
    for (const char* type : {"CS", "RT", "OA", "DC", "AU"})
      EXPECT_GT(database->count("AuditType = '" + std::string(type) + "'"), 1000) << type;
    const auto others = database->count("AuditType NOT IN ('CS', 'RT', 'OA', 'DC', 'AU')");
    EXPECT_GT(others, 10);
    EXPECT_LT(others, 1000);
  }
}

TEST_F(DemoDatabases, HaveEveryKindOfEvent) {
  EXPECT_THAT(
      single_.rows("SELECT DISTINCT EventType FROM Korvel_Audit_Trails ORDER BY EventType COLLATE BINARY"),
      ElementsAre(ElementsAre("CHECK_IN"), ElementsAre("CHECK_OUT"), ElementsAre("DELETE"), ElementsAre("INSERT"),
                  ElementsAre("OPERATOR"), ElementsAre("RESTORE"), ElementsAre("ROLLBACK"), ElementsAre("UPDATE")));
}

TEST_F(DemoDatabases, HaveAlarmRowsOfBothTableFamilies) {
  EXPECT_GT(single_.count("AuditType = 'CS' AND TableName LIKE 'vel_Alg%'"), 1000);
  EXPECT_GT(single_.count("AuditType = 'CS' AND TableName LIKE 'MS%'"), 1000);
}

TEST_F(DemoDatabases, HaveTagLoggingRowsOutsideTheConfigurationToo) {
  EXPECT_GT(single_.count("TableName LIKE 'PDE%' AND AuditType = 'RT'"), 500);
}

TEST_F(DemoDatabases, LeaveSomeValuesOutAndSomeEmpty) {
  for (const char* column : {"OldValue", "NewValue", "PCName", "AppUser", "UserName", "Comments"})
    EXPECT_GT(single_.count(std::string(column) + " IS NULL"), 50) << column;
  for (const char* column : {"AppUser", "AuditType", "Comments", "OSUser"})
    EXPECT_GT(single_.count(std::string(column) + " = ''"), 20) << column;
}

TEST_F(DemoDatabases, AreWrittenInManyScripts) {
  for (const char* piece : {"ü", "ß", "é", "ñ", "Ł", "ό", "я", "改", "タ", "ض", "👍", "°C", "\"", "|", "\r\n", "="})
    EXPECT_GT(single_.count("instr(OldValue || coalesce(Comments, '') || EventItem || UserName, '" +
                            std::string(piece) + "') > 0") +
                  multi_.count("instr(OldValue || coalesce(Comments, '') || EventItem || UserName, '" +
                               std::string(piece) + "') > 0"),
              0)
        << piece;
}

TEST_F(DemoDatabases, CoverTwoYears) {
  EXPECT_LT(single_.text("SELECT min(DateTime) FROM Korvel_Audit_Trails"), "2003-06-04");
  EXPECT_GT(single_.text("SELECT max(DateTime) FROM Korvel_Audit_Trails"), "2005-05-30");
  EXPECT_GT(single_.count("DateTime BETWEEN '2004-03-07 00:00:00.000' AND '2004-03-07 23:59:59.999'"), 5);
}

TEST_F(DemoDatabases, TellTheHourThatShowsTwiceApartByTheSummerFlag) {
  EXPECT_THAT(
      single_.rows("SELECT substr(DateTime, 12, 5), T1, NewValue FROM Korvel_Audit_Trails "
                   "WHERE DateTime BETWEEN '2003-10-26 02:00' AND '2003-10-26 03:00' AND EventItem = 'LIC-1901' "
                   "ORDER BY Nr"),
      ElementsAre(ElementsAre("02:15", "1", "61.5 %"), ElementsAre("02:45", "1", "60.8 %"),
                  ElementsAre("02:15", "0", "60.1 %"), ElementsAre("02:45", "0", "59.6 %")));
  EXPECT_EQ(single_.count("T1 = 0 AND DateTime BETWEEN '2004-05-01' AND '2004-09-30'"), 0);
  EXPECT_EQ(single_.count("T1 = 1 AND DateTime BETWEEN '2003-11-01' AND '2004-03-27'"), 0);
}

TEST_F(DemoDatabases, TellOfALimitRaisedInTheNight) {
  EXPECT_THAT(single_.rows("SELECT DateTime, OldValue, NewValue, AppUser FROM Korvel_Audit_Trails "
                           "WHERE EventItem = 'TIC-1901' ORDER BY Nr"),
              ElementsAre(ElementsAre("2004-03-07 03:02:44.871", "78.0 °C", "95.0 °C", "<null>"),
                          ElementsAre("2004-03-07 05:47:31.240", "95.0 °C", "78.0 °C", "<null>"),
                          ElementsAre("2004-03-08 09:41:15.733", "78.0 °C", "76.5 °C", "jhuebner")));
}

TEST_F(DemoDatabases, ShareNoProjectAndNoPerson) {
  const char* const projects = "SELECT DISTINCT ProjectGUID FROM Korvel_Audit_Trails";
  const auto singleProjects = single_.rows(projects);
  const auto multiProjects = multi_.rows(projects);
  EXPECT_THAT(singleProjects, SizeIs(4));
  EXPECT_THAT(multiProjects, SizeIs(5));
  for (const auto& project : singleProjects) EXPECT_THAT(multiProjects, testing::Not(testing::Contains(project)));
  EXPECT_EQ(multi_.count("UserName = 'Jörg Hübner'"), 0);
}

TEST_F(DemoDatabases, LeaveNothingElseInTheFolder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_->path()))
    names.push_back(entry.path().filename().string());
  EXPECT_THAT(names, testing::UnorderedElementsAre("Korvel_Audit.db", "Korvel_Audit_MU.db"));
}

TEST(DemoDatabase, IsTheSameForTheSameSeed) {
  const TemporaryFolder folder;
  writeDemoDatabase(folder / "one.db", 2000, 42);
  writeDemoDatabase(folder / "again.db", 2000, 42);
  writeDemoDatabase(folder / "other.db", 2000, 43);
  const auto one = OpenedDatabase(folder / "one.db").rows(everything);
  EXPECT_EQ(one, OpenedDatabase(folder / "again.db").rows(everything));
  EXPECT_NE(one, OpenedDatabase(folder / "other.db").rows(everything));
}

TEST(DemoDatabase, IsTheFirstOfThePair) {
  const TemporaryFolder folder;
  writeDemoDatabases({.folder = folder.path(), .rows = 500, .seed = 3});
  writeDemoDatabase(folder / "alone.db", 500, 3);
  EXPECT_EQ(OpenedDatabase(folder / "alone.db").rows(everything),
            OpenedDatabase(folder / "Korvel_Audit.db").rows(everything));
}

TEST(DemoDatabase, MayBeEmpty) {
  const TemporaryFolder folder;
  writeDemoDatabase(folder / "none.db", 0, 1);
  EXPECT_THAT(OpenedDatabase(folder / "none.db").rows(everything), IsEmpty());
}

TEST(DemoDatabase, MakesTheFolderItIsToStandIn) {
  const TemporaryFolder folder;
  writeDemoDatabases({.folder = folder / "a" / "b c ü", .rows = 10});
  EXPECT_EQ(OpenedDatabase(folder / "a" / "b c ü" / "Korvel_Audit.db").count("true"), 10);
}

}  // namespace
}  // namespace korvel::demo
