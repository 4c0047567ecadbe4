// A snapshot and a trail, what is told of them, and what cannot be compared.

#include "evidence/snapshot_comparison.h"

#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "base/error.h"
#include "db/embedded/embedded_connection.h"
#include "evidence/comparison_head.h"
#include "evidence/comparison_json.h"
#include "evidence/comparison_list.h"
#include "evidence/comparison_words.h"
#include "evidence/snapshot.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int rowCount = 300;

class SnapshotComparison : public testing::Test {
 protected:
  SnapshotComparison() {
    std::vector<test::AuditEntry> entries;
    for (int i = 1; i <= rowCount; ++i)
      entries.push_back(
          {i, "2004-03-07 00:00:00." + std::to_string(100 + i), "UATable", "item " + std::to_string(i), "CS"});
    test::writeAuditDatabase(trail, entries);
    const auto connect = [this](std::string_view, const std::stop_token&) {
      return db::openEmbedded(folder.path(), "D");
    };
    SnapshotOrder snapshot;
    snapshot.source = {"PLANT1", "D", "", ""};
    snapshot.folder = folder / "snapshot";
    snapshot.connect = connect;
    snapshot.program = "a program";
    snapshot.programVersion = "1.2";
    order.snapshot = takeSnapshot(snapshot).file;
    order.server = "PLANT2";
    order.database = "E";
    order.connect = connect;
    std::filesystem::permissions(order.snapshot, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
  }

  void change(const std::string& sql) const { test::DatabaseWriter(trail).run(sql); }
  void changeThree() const {
    change(
        "UPDATE Korvel_Audit_Trails SET UserName = 'anna', Comments = 'why' WHERE Nr = 5; "
        "DELETE FROM Korvel_Audit_Trails WHERE Nr = 7; "
        "UPDATE Korvel_Audit_Trails SET EventType = 'x' WHERE Nr = 9");
  }
  std::string failure() const {
    try {
      (void)compareWithSnapshot(order);
    } catch (const Error& error) {
      EXPECT_NE(error.textKey(), "") << error.description();
      return error.description();
    }
    return {};
  }
  /// Cells of a list, those of a row joined by "|".
  static std::vector<std::string> rowsOf(const results::ResultList& list) {
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
      std::string text;
      for (std::size_t column = 0; column < list.columns().size(); ++column)
        text.append(column == 0 ? "" : "|").append(list.textOf(list.rowId({row}), {column}));
      rows.push_back(text);
    }
    return rows;
  }

  test::TemporaryFolder folder;
  std::filesystem::path trail = folder / "D.db";
  ComparisonOrder order;
  ComparisonLanguage english{{}, [](std::size_t number) { return std::to_string(number); }};
  ComparisonLanguage german{settings::LanguageOffset("10000"), english.count};
};

TEST_F(SnapshotComparison, SaysInWordsThatNothingChangedButNewerRows) {
  change("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (301), (302)");
  const ComparedSnapshot compared = compareWithSnapshot(order);
  EXPECT_TRUE(compared.isUnchanged());
  EXPECT_THAT(
      comparisonSentences(compared, english),
      ElementsAre("UNCHANGED: all rows of the snapshot (300) are in the trail as they were", "2 rows are newer"));
  EXPECT_THAT(comparisonSentences(compared, german).front(), StartsWith("UNVERÄNDERT"));
}

TEST_F(SnapshotComparison, OfAChangedSnapshotBeginsWithThat) {
  test::DatabaseWriter(order.snapshot).run("UPDATE Korvel_Snapshot SET Value = 'me' WHERE Name = 'login'");
  const ComparedSnapshot compared = compareWithSnapshot(order);
  EXPECT_FALSE(compared.isUnchanged());
  EXPECT_THAT(comparisonSentences(compared, english).front(), StartsWith("DIFFERENT: the snapshot itself"));
}

TEST_F(SnapshotComparison, GivesPeopleALineForARemovedRowAndOneForEachChangedValue) {
  changeThree();
  const ComparedSnapshot compared = compareWithSnapshot(order);
  EXPECT_THAT(
      rowsOf(comparisonList(compared, ComparisonRows::compact, english)),
      ElementsAre("changed|5|2004-03-07 00:00:00.105 · user · UATable · field · item 5|UserName|user|anna",
                  "|||Comments||why", "removed|7|2004-03-07 00:00:00.107 · user · UATable · field · item 7 · old →|||",
                  "changed|9|2004-03-07 00:00:00.109 · user · UATable · field · item 9|EventType|item 9|x",
                  "numbers missing|7||Nr||"));
}

TEST_F(SnapshotComparison, GivesProgramsAllValues) {
  changeThree();
  const ComparedSnapshot compared = compareWithSnapshot(order);
  const auto rows = rowsOf(comparisonList(compared, ComparisonRows::complete, english));
  EXPECT_THAT(rows, testing::Contains("removed|7|Nr|7|"));
  EXPECT_THAT(rows, testing::Contains("removed|7|TableName|UATable|"));
  const auto json = nlohmann::json::parse(comparisonJson(compared));
  EXPECT_EQ(json["unchanged"], false);
  EXPECT_EQ(json["snapshot"]["server"], "PLANT1");
  EXPECT_EQ(json["trail"]["server"], "PLANT2");
  EXPECT_EQ(json["counts"]["removed"], 1);
  ASSERT_EQ(json["differences"].size(), 3U);
  EXPECT_EQ(json["differences"][0]["values"].size(), 2U);
  EXPECT_EQ(json["differences"][1]["row"]["TableName"], "UATable");
  EXPECT_EQ(json["differences"][1]["row"].size(), 18U);
  EXPECT_EQ(json["oddities"][0]["kind"], "gap");
}

TEST_F(SnapshotComparison, HasAHeadThatNamesBothSides) {
  changeThree();
  const ComparedSnapshot compared = compareWithSnapshot(order);
  const output::PageHead head = comparisonHead(compared, english, {"a viewer", "1.3", "2026-11-22T16:05:03+01:00"});
  EXPECT_EQ(head.title, "Comparison");
  ASSERT_EQ(head.facts.size(), 3U);
  EXPECT_THAT(head.facts[0].text, StartsWith("PLANT1, D · SQLite "));
  EXPECT_THAT(head.facts[0].text, HasSubstr(" · all dates · taken "));
  EXPECT_THAT(head.facts[0].text, HasSubstr(" · rows: 300"));
  EXPECT_THAT(head.facts[1].text, StartsWith("PLANT2, E · SQLite "));
  EXPECT_THAT(head.facts[1].text, HasSubstr("rows: 299"));
  EXPECT_THAT(head.facts[2].text, HasSubstr("In the trail by itself: 1 entry number is missing"));
  EXPECT_EQ(head.warning, "DIFFERENT: 2 changed, 1 removed; rows in the snapshot: 300");
  EXPECT_THAT(head.origin, HasSubstr("a viewer 1.3"));
}

TEST_F(SnapshotComparison, WithoutDifferencesHasAHeadWithoutWarning) {
  const output::PageHead head =
      comparisonHead(compareWithSnapshot(order), english, {"a viewer", "1.3", "2026-11-22T16:05:03+01:00"});
  EXPECT_EQ(head.warning, "");
  EXPECT_THAT(head.facts.at(2).text, StartsWith("UNCHANGED"));
}

TEST_F(SnapshotComparison, TellsHowFarItIs) {
  std::uint64_t bytes = 0;
  (void)compareWithSnapshot(order, [&](const ComparisonState& state) {
    if (state.isVerifying) bytes = state.done;
  });
  EXPECT_EQ(bytes, std::filesystem::file_size(order.snapshot));
  struct Enough {};
  EXPECT_THROW((void)compareWithSnapshot(order, [](const ComparisonState&) { throw Enough{}; }), Enough);
}

TEST_F(SnapshotComparison, FindsTheSnapshotOfAFolder) {
  EXPECT_EQ(snapshotNamed(order.snapshot.parent_path()), order.snapshot);
  EXPECT_EQ(snapshotNamed(order.snapshot), order.snapshot);
  std::filesystem::create_directory(folder / "empty");
  EXPECT_THROW((void)snapshotNamed(folder / "empty"), Error);
}

TEST_F(SnapshotComparison, SaysThatASnapshotIsCutOrDamaged) {
  std::filesystem::resize_file(order.snapshot, std::filesystem::file_size(order.snapshot) / 2);
  EXPECT_THAT(failure(), HasSubstr("D.db is cut or damaged"));
  std::ofstream(order.snapshot, std::ios::binary | std::ios::trunc) << std::string(5000, 'x');
  EXPECT_THAT(failure(), HasSubstr("D.db is cut or damaged"));
}

TEST_F(SnapshotComparison, SaysThatASnapshotIsLocked) {
  test::DatabaseWriter other(order.snapshot);
  other.run("BEGIN EXCLUSIVE");
  EXPECT_THAT(failure(), HasSubstr("Another program has "));
}

TEST_F(SnapshotComparison, SaysThatASnapshotIsOfANewerVersionOrNone) {
  test::DatabaseWriter(order.snapshot).run("UPDATE Korvel_Snapshot SET Value = '2' WHERE Name = 'version'");
  EXPECT_THAT(failure(), HasSubstr("needs to be updated"));
  order.snapshot = trail;
  EXPECT_THAT(failure(), HasSubstr("is a database, and no snapshot"));
}

/// The trail's server breaks off: nothing is told of half a trail.
TEST_F(SnapshotComparison, WithATrailThatBreaksOffFails) {
  order.connect = [](std::string_view, const std::stop_token&) -> std::unique_ptr<db::Connection> {
    class Breaking final : public db::Connection {
     public:
      void execute(std::string_view, db::ResultSink&) override {}
      void select(const db::AuditSelection&, db::ResultSink& sink) override {
        const std::vector<db::Field> fields = {{"Nr"}, {"DateTime"}};
        sink.beginResult(fields);
        sink.row(std::vector<db::Cell>{{"1", false}, {"2004-03-07 00:00:00.101", false}});
        throw Error(20006, "the connection broke");
      }
      [[nodiscard]] db::ServerIdentity identity() const override { return {}; }
    };
    return std::make_unique<Breaking>();
  };
  EXPECT_THROW((void)compareWithSnapshot(order), Error);
}

}  // namespace
}  // namespace korvel::evidence
