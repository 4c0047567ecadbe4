#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "db/connection.h"
#include "query/audit_record.h"

namespace korvel::test {

using CannedRow = std::array<std::string, query::auditColumnCount>;

/// A record of the audit trail with a number, an audit type, and a comment that the standard lists never show.
inline CannedRow record(const std::string& number, const std::string& auditType, const std::string& area = "Area") {
  CannedRow row;
  row.fill("x");
  row[0] = number;
  row[5] = area;
  row[15] = auditType;
  row[16] = "comment";
  return row;
}

/// The answers of a server, and the requests to it.
struct CannedServer {
  std::vector<std::vector<CannedRow>> resultSets;
  std::optional<Error> failure;
  std::vector<std::string> connectionStrings;
  std::vector<std::string> commands;
  int openConnections = 0;
  db::ServerIdentity identity;
  /// Answers in the place of the result sets.
  std::function<void(db::ResultSink&)> answer;

  std::unique_ptr<db::Connection> connect(std::string_view connectionString);
};

class CannedConnection final : public db::Connection {
 public:
  explicit CannedConnection(CannedServer& server) : server_(server) { ++server_.openConnections; }
  ~CannedConnection() override { --server_.openConnections; }
  CannedConnection(const CannedConnection&) = delete;
  CannedConnection& operator=(const CannedConnection&) = delete;

  void execute(std::string_view commandText, db::ResultSink& sink) override {
    server_.commands.emplace_back(commandText);
    if (server_.answer) {
      server_.answer(sink);
      if (server_.failure) throw Error(*server_.failure);
      return;
    }
    std::vector<db::Field> fields;
    for (const query::AuditColumn& column : query::auditColumns()) fields.push_back({std::string(column.name)});
    for (const auto& rows : server_.resultSets) {
      sink.beginResult(fields);
      for (const CannedRow& row : rows) {
        std::vector<db::Cell> cells;
        for (const std::string& text : row) cells.push_back({text});
        if (!sink.row(cells)) return;
      }
      sink.endResult();
    }
    if (server_.failure) throw Error(*server_.failure);
  }
  [[nodiscard]] db::ServerIdentity identity() const override { return server_.identity; }

 private:
  CannedServer& server_;
};

inline std::unique_ptr<db::Connection> CannedServer::connect(std::string_view connectionString) {
  connectionStrings.emplace_back(connectionString);
  return std::make_unique<CannedConnection>(*this);
}

}  // namespace korvel::test
