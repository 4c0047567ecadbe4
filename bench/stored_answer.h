#pragma once

#include <memory>
#include <span>
#include <string>

#include "db/connection.h"
#include "results/store_filler.h"

namespace korvel::bench {

/// The whole answer to a statement, stored as queries store it.
inline std::shared_ptr<const results::RowStore> storedAnswer(db::Connection& connection, const std::string& statement) {
  class Sink final : public db::ResultSink {
   public:
    void beginResult(std::span<const db::Field> fields) override { filler.beginResult(fields); }
    bool row(std::span<const db::Cell> cells) override {
      filler.append(cells);
      return true;
    }
    void endResult() override {}

    results::StoreFiller filler;
  } sink;
  connection.execute(statement, sink);
  return sink.filler.takeStore();
}

}  // namespace korvel::bench
