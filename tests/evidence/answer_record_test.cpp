#include "evidence/answer_record.h"

#include <gmock/gmock.h>

#include <chrono>
#include <regex>

namespace korvel::evidence {
namespace {

using query::QueryOutcome;
using testing::ElementsAre;
using testing::IsEmpty;

class NamedConnection final : public db::Connection {
 public:
  void execute(std::string_view /*commandText*/, db::ResultSink& /*sink*/) override {}
  [[nodiscard]] db::ServerIdentity identity() const override { return {"Engine 12", "PLANT\\reader"}; }
};

TEST(AnswerRecord, SaysWhoAnsweredAndWhen) {
  const AnsweringServer server;
  Manifest record = begunRecord("AUDITSRV", "Korvel_Audit");
  const query::Connector connect =
      server.remembering([](std::string_view, const std::stop_token&) { return std::make_unique<NamedConnection>(); });
  EXPECT_EQ(server.identity().product, "");
  ASSERT_NE(connect("Server=AUDITSRV;", {}), nullptr);
  endRecord(record, server.identity());
  EXPECT_EQ(record.source.server, "AUDITSRV");
  EXPECT_EQ(record.source.database, "Korvel_Audit");
  EXPECT_EQ(record.source.engine, "Engine 12");
  EXPECT_EQ(record.source.login, "PLANT\\reader");
  for (const std::string& moment : {record.begun, record.ended})
    EXPECT_TRUE(std::regex_match(moment, std::regex("[0-9-]+T[0-9:]+[+-][0-9:]+"))) << moment;
}

TEST(AnswerRecord, KeepsTheQuestionInWords) {
  using namespace std::chrono_literals;
  Manifest record;
  query::DateRange range;
  range.DateRangeActive = true;
  range.RangeFromDate = 2004y / 3 / 7;
  range.RangeToDate = 2004y / 3 / 9;
  const query::CategoryFlags flags = query::CategoryFlags().set(3).set(5);
  recordQuestion(record, flags, range, true);
  EXPECT_THAT(record.question.categories, ElementsAre("Configuration / User Archives", "Runtime / User Archives"));
  EXPECT_EQ(record.question.from, "2004-03-07 00:00:00.000");
  EXPECT_EQ(record.question.to, "2004-03-09 23:59:59.999");
  EXPECT_TRUE(record.question.beyondLimit);
  EXPECT_EQ(record.question.text, query::queryAuditsText(flags, range));
  recordQuestion(record, flags, {}, false);
  EXPECT_EQ(record.question.from + record.question.to, "");
}

TEST(AnswerRecord, SaysWhereTheLimitWasReached) {
  Manifest record;
  const query::ResultLists lists = query::makeResultLists();
  const query::CategoryFlags flags = query::CategoryFlags().set(1).set(2);
  recordAnswer(record, flags, {QueryOutcome::filled, std::nullopt, {1}, 2}, lists);
  EXPECT_EQ(record.isComplete, false);
  EXPECT_THAT(record.limitReached, ElementsAre("Configuration / Tag Logging"));
  ASSERT_EQ(record.lists.size(), query::standardListCount);
  EXPECT_EQ(record.lists[3].caption, "Document Control");
  recordAnswer(record, flags, {QueryOutcome::filled, std::nullopt, {}, 2}, lists);
  EXPECT_EQ(record.isComplete, true);
  EXPECT_THAT(record.limitReached, IsEmpty());
  EXPECT_EQ(record.lists.size(), query::standardListCount) << "counts take the place of earlier ones";
}

TEST(AnswerRecord, OfACompletedAnswerSaysWhatIsStillCut) {
  Manifest record;
  query::CompletionReport report;
  report.outcome = QueryOutcome::filled;
  recordAnswer(record, report, query::makeResultLists());
  EXPECT_EQ(record.isComplete, true);
  report.incomplete.push_back({query::IncompletePart::Kind::minute, {}, 1, Error(229, "")});
  recordAnswer(record, report, query::makeResultLists());
  EXPECT_EQ(record.isComplete, false);
  EXPECT_THAT(record.limitReached, ElementsAre("Configuration / Alarms"));
  report.incomplete.clear();
  report.endedEarly = true;
  recordAnswer(record, report, query::makeResultLists());
  EXPECT_EQ(record.isComplete, false);
}

}  // namespace
}  // namespace korvel::evidence
