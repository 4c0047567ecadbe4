// The same rows have the same digest from an embedded database and from a server.

#include "db/embedded/embedded_connection.h"
#include "evidence/recorded_rows.h"
#include "query/standard_query.h"
#include "tests/db/audit_database.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

class DigestOverTheWire : public WireTest {
 protected:
  static evidence::Manifest::Rows recorded(const query::Connector& connector) {
    query::FilterTree tree;
    tree.selectAll();
    query::ResultLists lists = query::makeResultLists();
    EXPECT_EQ(query::runStandardQuery({tree, {}, "a server"}, connector, lists, 0).outcome,
              query::QueryOutcome::filled);
    return evidence::recordedRows(lists[0]);
  }
};

TEST_F(DigestOverTheWire, isThatOfAnEmbeddedDatabase) {
  const std::vector<AuditEntry> entries = {{1, "2004-03-07 00:00:00.000", "UATable", "CHANGE", "CS"},
                                           {-20, "2004-10-31 02:59:59.997", "Małgorzata 🔧", "", "RT"},
                                           {300, std::nullopt, " blanks ", "line\r\nline", "OA"}};
  writeAuditDatabase(folder_ / "D.db", entries);
  const auto embedded = [this](std::string_view, const std::stop_token&) {
    return db::openEmbedded(folder_.path(), "D");
  };
  CollectingSink sink;
  db::openEmbedded(folder_.path(), "D")->execute("SELECT * FROM Korvel_Audit_Trails", sink);
  server_.answerOthers([result = sink.results.at(0)](const tds::Command&) {
    std::vector<tds::Column> columns;
    for (const db::Field& field : result.fields)
      columns.emplace_back(field.name, field.name == "Nr"         ? "int not null"
                                       : field.name == "DateTime" ? "datetime"
                                                                  : "nvarchar(50)");
    tds::Answer answer;
    answer.procedure().result(columns);
    for (const TextRow& row : result.rows) {
      std::vector<tds::Value> values;
      for (std::size_t i = 0; i < row.size(); ++i)
        values.push_back(!row[i]                         ? tds::Value(tds::null)
                         : result.fields[i].name == "Nr" ? tds::Value(std::stoi(*row[i]))
                                                         : tds::Value(*row[i]));
      answer.row(values);
    }
    return answer;
  });
  const auto server = [this](std::string_view, const std::stop_token&) {
    return db::odbc::openServer(serverName(), "Korvel_Audit", access_);
  };
  const evidence::Manifest::Rows here = recorded(embedded);
  const evidence::Manifest::Rows there = recorded(server);
  ASSERT_EQ(here.each.size(), 3U);
  EXPECT_EQ(here.digest, there.digest);
  EXPECT_EQ(here.each, there.each);
  EXPECT_EQ(here.columns, there.columns);
}

TEST_F(DigestOverTheWire, aServerTellsItsProductAndTheLogin) {
  const auto connection = db::odbc::openServer(serverName(), "Korvel_Audit", access_);
  EXPECT_EQ(connection->identity().product, "Microsoft SQL Server 15.0.2000");
  // FreeTDS tells no login.
  EXPECT_EQ(connection->identity().login, "");
  access_.acquireTicket = [](const std::string&, const db::net::Deadline&) {
    return db::odbc::Ticket{db::odbc::TicketState::valid, "auditor@PLANT.EXAMPLE"};
  };
  EXPECT_EQ(db::odbc::openServer(serverName(), "Korvel_Audit", access_)->identity().login, "auditor@PLANT.EXAMPLE");
}

}  // namespace
}  // namespace korvel::test
