#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "db/connection.h"

namespace korvel::test {

/// A row of a script; nothing is null.
using ScriptedRow = std::vector<std::optional<std::string>>;

struct ScriptedResult {
  std::vector<db::Field> fields;
  std::vector<ScriptedRow> rows;
  /// Called instead of ending the result set; throws the error of a broken connection.
  std::function<void()> breaksOff;
};

/// A server that gives the same answer to every text and records the calls.
class ScriptedServer {
 public:
  std::vector<ScriptedResult> answer;
  std::function<void()> refusesConnection;  ///< throws in place of opening
  std::function<void()> refusesExecution;   ///< throws before the answer begins
  std::function<void()> breaksAtTheEnd;     ///< throws when all result sets have been sent
  std::function<void()> onClose = [] {};

  std::vector<std::string> opened;    ///< connection strings
  std::vector<std::string> executed;  ///< command texts
  std::stop_token stop;               ///< the last connection's
  std::size_t rowsOffered = 0;
  int openConnections = 0;

  auto connector() {
    return [this](std::string_view connectionString, const std::stop_token& asked) -> std::unique_ptr<db::Connection> {
      opened.emplace_back(connectionString);
      stop = asked;
      if (refusesConnection) refusesConnection();
      return std::make_unique<Connection>(*this);
    };
  }

 private:
  class Connection final : public db::Connection {
   public:
    explicit Connection(ScriptedServer& server) : server_(server) { ++server_.openConnections; }
    ~Connection() override {
      --server_.openConnections;
      server_.onClose();
    }

    void execute(std::string_view commandText, db::ResultSink& sink) override {
      server_.executed.emplace_back(commandText);
      if (server_.refusesExecution) server_.refusesExecution();
      for (const ScriptedResult& result : server_.answer) {
        sink.beginResult(result.fields);
        for (const ScriptedRow& row : result.rows) {
          ++server_.rowsOffered;
          std::vector<db::Cell> cells;
          for (const auto& value : row)
            cells.push_back({value ? std::string_view(*value) : std::string_view{}, !value});
          if (!sink.row(cells)) return;
        }
        if (result.breaksOff) result.breaksOff();
        sink.endResult();
      }
      if (server_.breaksAtTheEnd) server_.breaksAtTheEnd();
    }

   private:
    ScriptedServer& server_;
  };
};

}  // namespace korvel::test
