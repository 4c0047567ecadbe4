#include "evidence/answer_record.h"

#include <chrono>

#include "evidence/origin.h"
#include "query/audit_record.h"
#include "query/limit_reached.h"

namespace korvel::evidence {

namespace {

void recordCounts(Manifest& record, const query::ResultLists& lists) {
  record.lists.clear();
  for (std::size_t i = 0; i < query::standardListCount; ++i)
    record.lists.push_back({std::string(query::pageCaptions[i]), lists[i].wholeRowCount()});
}

}  // namespace

query::Connector AnsweringServer::remembering(const query::Connector& connect) const {
  return [connect, known = known_](std::string_view connectionString, const std::stop_token& stop) {
    auto connection = connect(connectionString, stop);
    if (connection) {
      const std::lock_guard lock(known->mutex);
      known->identity = connection->identity();
    }
    return connection;
  };
}

db::ServerIdentity AnsweringServer::identity() const {
  const std::lock_guard lock(known_->mutex);
  return known_->identity;
}

Manifest begunRecord(const std::string& server, const std::string& database) {
  Manifest record;
  record.begun = localTimeText(std::chrono::system_clock::now());
  record.source.server = server;
  record.source.database = database;
  return record;
}

void endRecord(Manifest& record, const db::ServerIdentity& server) {
  record.ended = localTimeText(std::chrono::system_clock::now());
  record.source.engine = server.product;
  record.source.login = server.login;
  record.source.snapshot = server.snapshot;
}

void recordQuestion(Manifest& record, const query::CategoryFlags& flags, const query::DateRange& range,
                    bool beyondLimit) {
  Manifest::Question& question = record.question;
  question.categories.clear();
  for (std::size_t i = 0; i < flags.size(); ++i)
    if (flags[i]) question.categories.push_back(query::categoryCaption(i));
  question.from = range.DateRangeActive ? query::fromDateText(range) : std::string();
  question.to = range.DateRangeActive ? query::toDateText(range) : std::string();
  question.beyondLimit = beyondLimit;
  question.text = query::queryAuditsText(flags, range);
}

void recordAnswer(Manifest& record, const query::CategoryFlags& flags, const query::QueryReport& report,
                  const query::ResultLists& lists) {
  recordCounts(record, lists);
  record.limitReached = query::limitReached(flags, report);
  record.isComplete = record.limitReached.empty();
}

void recordAnswer(Manifest& record, const query::CompletionReport& report, const query::ResultLists& lists) {
  recordCounts(record, lists);
  record.limitReached = query::limitReached(report);
  record.isComplete = report.isComplete();
}

}  // namespace korvel::evidence
