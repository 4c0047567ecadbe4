#include <gtest/gtest.h>

#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

/// Counts the questions whether to go on, and answers no or throws at a given one.
class AskedSink final : public ResultSink {
 public:
  void beginResult(std::span<const Field>) override { ++results; }
  bool row(std::span<const Cell>) override {
    ++rows;
    return true;
  }
  void endResult() override { ++ended; }
  bool shouldContinue() override {
    if (++asked == throwsAt) throw Error(77, "thrown");
    return asked != stopsAt;
  }

  int stopsAt = 0;
  int throwsAt = 0;
  int asked = 0;
  int results = 0;
  int rows = 0;
  int ended = 0;
};

struct EmbeddedStop : testing::Test {
  EmbeddedStop() {
    test::writeAuditDatabase(folder / "D.db", {{1, std::nullopt, "t", "e", "CS"}});
    connection = openEmbedded(folder.path(), "D");
  }

  test::TemporaryFolder folder;
  std::unique_ptr<Connection> connection;
  AskedSink sink;
  const std::string endless =
      "WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c) SELECT n FROM c WHERE n < 0";
};

TEST_F(EmbeddedStop, AStatementIsStoppedBeforeItsFirstRow) {
  sink.stopsAt = 5;
  connection->execute(endless, sink);
  EXPECT_EQ(sink.asked, 5);
  EXPECT_EQ(sink.results, 0);
  EXPECT_EQ(sink.ended, 0);
  EXPECT_EQ(test::answerText(*connection, "SELECT 1 AS a"), "a\n1\n");
}

TEST_F(EmbeddedStop, AStatementThatOnlyCountsIsStopped) {
  sink.stopsAt = 5;
  connection->execute("SELECT count(*) FROM (" + endless + ")", sink);
  EXPECT_EQ(sink.results, 0);
}

TEST_F(EmbeddedStop, StatementsAreNotBegunBehindOneThatWasEnough) {
  sink.stopsAt = 2;
  connection->execute("SELECT 1; nonsense", sink);
  EXPECT_EQ(sink.results, 1);
  EXPECT_EQ(sink.ended, 1);
}

TEST_F(EmbeddedStop, NothingIsBegunThatIsNotWanted) {
  sink.stopsAt = 1;
  connection->execute("nonsense", sink);
  EXPECT_EQ(sink.asked, 1);
}

TEST_F(EmbeddedStop, WhatTheSinkThrowsComesOut) {
  sink.throwsAt = 5;
  const auto error = test::errorOf([&] { connection->execute(endless, sink); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 77);
  EXPECT_EQ(test::answerText(*connection, "SELECT 1 AS a"), "a\n1\n");
}

TEST_F(EmbeddedStop, AnAnswerThatIsWantedIsAskedForAndWhole) {
  connection->execute("WITH RECURSIVE c(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM c WHERE n < 20000) SELECT n FROM c",
                      sink);
  EXPECT_EQ(sink.rows, 20000);
  EXPECT_GT(sink.asked, 10);
  EXPECT_EQ(sink.ended, 1);
}

}  // namespace
}  // namespace korvel::db
