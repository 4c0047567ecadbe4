#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "db/connection.h"
#include "evidence/manifest.h"
#include "query/completion_report.h"
#include "query/date_range.h"
#include "query/filter_tree.h"
#include "query/standard_query.h"

namespace korvel::evidence {

/// Remembers who answered, whichever thread connects.
class AnsweringServer {
 public:
  /// A connector that connects as `connect` does, and remembers.
  [[nodiscard]] query::Connector remembering(const query::Connector& connect) const;
  [[nodiscard]] db::ServerIdentity identity() const;

 private:
  struct Known {
    std::mutex mutex;
    db::ServerIdentity identity;
  };
  std::shared_ptr<Known> known_ = std::make_shared<Known>();
};

// What is recorded of a query and its answer: a manifest that has no output yet, nor a user who made one.

/// A query begins.
[[nodiscard]] Manifest begunRecord(const std::string& server, const std::string& database);
/// Its answer has come, from `server`.
void endRecord(Manifest& record, const db::ServerIdentity& server);

/// What the standard query was asked.
void recordQuestion(Manifest& record, const query::CategoryFlags& flags, const query::DateRange& range,
                    bool beyondLimit);
/// How many rows each of the standard lists got, whatever filters hide, and whether they are all.
void recordAnswer(Manifest& record, const query::CategoryFlags& flags, const query::QueryReport& report,
                  const query::ResultLists& lists);
/// The same of an answer that was to be completed.
void recordAnswer(Manifest& record, const query::CompletionReport& report, const query::ResultLists& lists);

}  // namespace korvel::evidence
