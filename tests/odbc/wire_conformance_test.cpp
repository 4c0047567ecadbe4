#include "db/embedded/embedded_connection.h"
#include "tests/db/connection_conformance.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

/// The declaration of an answer's column on the wire.
const char* declarationOf(db::ColumnKind kind) {
  switch (kind) {
    case db::ColumnKind::number:
      return "bigint";
    case db::ColumnKind::boolean:
      return "bit";
    case db::ColumnKind::dateTime:
      return "datetime2(3)";
    case db::ColumnKind::binary:
      return "varbinary(max)";
    case db::ColumnKind::text:
      break;
  }
  return "nvarchar(max)";
}

tds::Value onTheWire(const std::optional<std::string>& text, db::ColumnKind kind) {
  if (!text) return tds::null;
  if (kind == db::ColumnKind::number || kind == db::ColumnKind::boolean) return std::stoll(*text);
  return *text;
}

/// A server with the data and the answers of an embedded database.
class ServerBackend final : public ConformanceBackend {
 public:
  ServerBackend() {
    server_.answerOthers([this](const tds::Command& command) { return answerTo(command.text); });
    access_.options.trustServerCertificate = true;
  }
  [[nodiscard]] std::string absence() const override {
    return installedFreeTds() ? "" : "the FreeTDS ODBC driver is not installed";
  }
  void fill(const std::vector<AuditEntry>& entries) override {
    std::filesystem::remove(folder_ / "D.db");
    writeAuditDatabase(folder_ / "D.db", entries);
  }
  [[nodiscard]] std::unique_ptr<db::Connection> connect() override {
    return db::odbc::openServer("localhost," + std::to_string(server_.port()), "D", access_);
  }

 private:
  tds::Answer answerTo(const std::string& text) {
    tds::Answer answer;
    const auto database = db::openEmbedded(folder_.path(), "D");
    CollectingSink sink;
    const auto failure = errorOf([&] { database->execute(text, sink); });
    for (const CollectedResult& result : sink.results) {
      std::vector<tds::Column> columns;
      for (const db::Field& field : result.fields) columns.emplace_back(field.name, declarationOf(field.kind));
      answer.result(columns);
      for (const TextRow& row : result.rows) {
        std::vector<tds::Value> values;
        for (std::size_t i = 0; i < row.size(); ++i) values.push_back(onTheWire(row[i], result.fields[i].kind));
        answer.row(values);
      }
      if (result.ended) answer.done();
    }
    if (failure) answer.error({failure->number(), failure->description()});
    return answer;
  }

  TemporaryFolder folder_;
  tds::TdsServer server_;
  db::odbc::ServerAccess access_ = accessWithoutDomain();
};

std::unique_ptr<ConformanceBackend> makeServer() {
  return std::make_unique<ServerBackend>();
}

INSTANTIATE_TEST_SUITE_P(Server, ConnectionConformance, testing::Values(makeServer));

}  // namespace
}  // namespace korvel::test
