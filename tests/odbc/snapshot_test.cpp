// Snapshots of a server's trail, and their comparison with it.

#include "evidence/snapshot.h"

#include "db/embedded/embedded_connection.h"
#include "evidence/snapshot_reader.h"
#include "evidence/trail_comparison.h"
#include "tests/db/audit_database.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using ::testing::HasSubstr;

/// A server that answers any select by running it on an embedded database.
class SnapshotOverTheWire : public WireTest {
 protected:
  void SetUp() override {
    WireTest::SetUp();
    std::vector<AuditEntry> entries;
    for (int i = 1; i <= rows; ++i)
      entries.push_back({i, "2004-10-31 02:59:59.997", i % 3 == 0 ? "Małgorzata 🔧" : " blanks ",
                         i % 5 == 0 ? std::optional<std::string>() : "line\r\nline", "CS"});
    writeAuditDatabase(folder_ / "D.db", entries);
    server_.answerOthers([this](const tds::Command& command) { return answerOf(command); });
    order_.source = {serverName(), "D", "", ""};
    order_.folder = folder_ / "snapshot";
    order_.connect = [this](std::string_view, const std::stop_token& stop) {
      db::odbc::ServerAccess access = access_;
      access.stop = stop;
      return db::odbc::openServer(serverName(), "D", access);
    };
  }

  tds::Answer answerOf(const tds::Command& command) const {
    CollectingSink sink;
    db::openEmbedded(folder_.path(), "D")->execute(command.text, sink);
    tds::Answer answer;
    const auto& result = sink.results.at(0);
    std::vector<tds::Column> columns;
    for (const db::Field& field : result.fields) columns.emplace_back(field.name, declarationOf(field.name));
    answer.result(columns);
    std::size_t told = 0;
    for (const TextRow& row : result.rows) {
      if (breakAfter_ && result.fields.size() > 3 && told++ == *breakAfter_) return answer.abandon().close();
      std::vector<tds::Value> values;
      for (std::size_t i = 0; i < row.size(); ++i)
        values.push_back(!row[i]                                                   ? tds::Value(tds::null)
                         : declarationOf(result.fields[i].name).starts_with("int") ? tds::Value(std::stoi(*row[i]))
                                                                                   : tds::Value(*row[i]));
      answer.row(values);
    }
    return answer;
  }
  static std::string declarationOf(const std::string& column) {
    if (column == "Nr" || column.find('(') != std::string::npos) return "int";
    return column == "DateTime" ? "datetime" : "nvarchar(50)";
  }
  void change(const std::string& sql) const { DatabaseWriter(folder_ / "D.db").run(sql); }
  evidence::TrailComparison compared(const std::filesystem::path& snapshot) {
    db::AuditSelection all;
    all.dates = db::AuditSelection::Dates::all;
    all.numbers.emplace();
    const auto last = evidence::snapshotFactsOf(*evidence::openSnapshot(snapshot))->last;
    evidence::RowStream before(
        [=](db::ResultSink& sink, const std::stop_token&) { evidence::openSnapshot(snapshot)->select(all, sink); });
    evidence::RowStream now(
        [=, this](db::ResultSink& sink, const std::stop_token& stop) { order_.connect("", stop)->select(all, sink); });
    return evidence::compareTrails(before, now, last);
  }

  static constexpr int rows = 5000;
  std::optional<std::size_t> breakAfter_;
  evidence::SnapshotOrder order_;
};

TEST_F(SnapshotOverTheWire, holdsWhatTheServerHoldsAndNamesWhatChanged) {
  const evidence::TakenSnapshot taken = evidence::takeSnapshot(order_);
  EXPECT_EQ(taken.facts.rows, rows);
  EXPECT_TRUE(compared(taken.file).isUnchanged());
  change(
      "UPDATE Korvel_Audit_Trails SET TableName = 'other' WHERE Nr = 4320; "
      "DELETE FROM Korvel_Audit_Trails WHERE Nr = 17");
  const evidence::TrailComparison found = compared(taken.file);
  ASSERT_EQ(found.differences.size(), 2U);
  EXPECT_EQ(found.differences[0].number, 17);
  EXPECT_EQ(found.differences[0].kind, evidence::RowDifference::Kind::removed);
  EXPECT_EQ(found.differences[1].number, 4320);
  EXPECT_EQ(found.differences[1].values.at(0).before, "Małgorzata 🔧");
  EXPECT_EQ(found.same, rows - 2U);
}

TEST_F(SnapshotOverTheWire, hasTheDigestOfTheSameRowsInAnEmbeddedDatabase) {
  const evidence::Digest wire = evidence::takeSnapshot(order_).facts.digest;
  order_.folder = folder_ / "embedded";
  order_.connect = [this](std::string_view, const std::stop_token&) { return db::openEmbedded(folder_.path(), "D"); };
  EXPECT_EQ(evidence::takeSnapshot(order_).facts.digest, wire);
}

TEST_F(SnapshotOverTheWire, isContinuedWhereTheServerBreaksOff) {
  const evidence::Digest whole = evidence::takeSnapshot(order_).facts.digest;
  order_.folder = folder_ / "broken";
  breakAfter_ = 2000;
  const evidence::TakenSnapshot taken = evidence::takeSnapshot(order_);
  EXPECT_EQ(taken.facts.digest, whole);
  EXPECT_EQ(taken.facts.rows, rows);
}

/// A login that may only run the procedure.
TEST_F(SnapshotOverTheWire, saysThatTheTableMayNotBeRead) {
  server_.answerOthers([](const tds::Command&) {
    return tds::Answer().error(
        {229, "The SELECT permission was denied on the object 'Korvel_Audit_Trails', database 'D'."});
  });
  const auto error = errorOf([&] { (void)evidence::takeSnapshot(order_); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 229);
  EXPECT_THAT(error->description(), HasSubstr("permission"));
  EXPECT_FALSE(std::filesystem::exists(order_.folder / "D.db"));
}

}  // namespace
}  // namespace korvel::test
