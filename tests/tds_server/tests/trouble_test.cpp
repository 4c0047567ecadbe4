#include <future>

#include "tests/tds_server/tests/server_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

const std::vector<Column> numberAndName{{"Nr", "int"}, {"Name", "nvarchar(4000)"}};
const Answer fine = Answer().result({{"Nr", "int"}}).row({1});

class ServerTrouble : public ServerTest {
 protected:
  void expectThatANewConnectionWorks() {
    ASSERT_THAT(connect(), IsEmpty());
    EXPECT_THAT(shown(fine), ElementsAre("[Nr]", "1"));
  }
  /// The answer breaks off after `before`, and the driver reports an error.
  void expectBreak(const Answer& answer, const std::vector<std::string>& before) {
    std::vector<std::string> lines = shown(answer);
    ASSERT_THAT(lines, Not(IsEmpty()));
    EXPECT_THAT(lines.back(), StartsWith("! "));
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("! "); });
    EXPECT_EQ(lines, before);
    expectThatANewConnectionWorks();
  }
};

TEST_F(ServerTrouble, TheConnectionEndsAtEveryMomentOfTheLogin) {
  for (const Moment moment :
       {Moment::accepted, Moment::preloginReceived, Moment::preloginAnswered, Moment::loginReceived}) {
    for (const Steps& steps :
         {Steps().close(), Steps().reset(), Steps().raw("HTTP/1.1 400 Bad Request\r\n\r\n").close()}) {
      SCOPED_TRACE(static_cast<int>(moment));
      server_.at(moment, steps);
      EXPECT_THAT(connect(), Not(IsEmpty()));
      server_.at(moment, Steps());
      expectThatANewConnectionWorks();
    }
  }
}

TEST_F(ServerTrouble, ASilentServerCanBeStoppedAtOnce) {
  for (const Moment moment :
       {Moment::accepted, Moment::preloginReceived, Moment::preloginAnswered, Moment::loginReceived}) {
    TdsServer quiet;
    quiet.at(moment, Steps().silence());
    const std::string text = freeTdsString(driver_, quiet.port(), "Encryption=off;UID=a;PWD=b;");
    auto trouble = std::async(std::launch::async, [&] { return BareOdbc().connect(text); });
    EXPECT_TRUE(quiet.waitUntil([](const Record& record) { return record.connections == 1; }));
    quiet.stop();
    EXPECT_THAT(trouble.get(), Not(IsEmpty()));
  }
}

TEST_F(ServerTrouble, ALoginWaitsUntilItIsReleased) {
  const Gate gate;
  server_.at(Moment::loginReceived, Steps().waitFor(gate));
  auto connected = std::async(std::launch::async, [&] { return connect(); });
  EXPECT_TRUE(gate.waitUntilReached());
  EXPECT_THAT(server_.record().logins, IsEmpty());
  gate.open();
  EXPECT_THAT(connected.get(), IsEmpty());
}

TEST_F(ServerTrouble, TheConnectionEndsInTheMiddleOfARow) {
  expectBreak(Answer().result(numberAndName).row({1, "pump"}).row({2, "valve"}).cut(4).close(),
              {"[Nr, Name]", "1, pump"});
  // After a reset, rows that were sent before it may be lost.
  EXPECT_THAT(shown(Answer().result(numberAndName).row({1, "pump"}).reset()).back(), StartsWith("! "));
  expectThatANewConnectionWorks();
}

TEST_F(ServerTrouble, TheConnectionEndsBetweenResults) {
  expectBreak(Answer().result(numberAndName).row({1, "pump"}).done().close(), {"[Nr, Name]", "1, pump"});
}

TEST_F(ServerTrouble, TheConnectionEndsBeforeTheAnswer) {
  expectBreak(Answer().close(), {});
}

TEST_F(ServerTrouble, TheConnectionEndsAfterAnError) {
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_THAT(shown(Answer().bareError({208, "Invalid object name 'x'."}).close()),
              Contains("! 42S02 208 Invalid object name 'x'."));
  expectThatANewConnectionWorks();
}

TEST_F(ServerTrouble, MalformedAnswers) {
  using namespace std::string_literals;
  expectBreak(Answer().raw("\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"s).close(), {});
  expectBreak(Answer().raw("\x04\x01\xFF\xFF\x00\x00\x01\x00\x81"s).close(), {});  // a packet longer than what comes
  expectBreak(Answer().tokens("\x01\x02\x03"s).close(), {});
  expectBreak(Answer().tokens("\xAA\xFF\xFF\x01"s).close(), {});  // an error longer than what comes
  expectBreak(Answer().result(numberAndName).tokens("\xD1\x09"s).close(), {"[Nr, Name]"});  // an int of nine bytes
}

TEST_F(ServerTrouble, AnAnswerWithoutEnd) {
  ASSERT_THAT(connect(), IsEmpty());
  // The message has ended, the connection has not: the driver waits for the rest until its timeout.
  odbc_.setTimeout(1);
  const auto lines = shown(Answer().result(numberAndName).row({1, "pump"}).row({2, "valve"}).cut(3).abandon());
  ASSERT_THAT(lines, Not(IsEmpty()));
  EXPECT_THAT(lines, Contains(StartsWith("! HYT00")));
  expectThatANewConnectionWorks();
}

TEST_F(ServerTrouble, AnAnswerWaitsUntilItIsReleased) {
  const Gate gate;
  auto lines = std::async(std::launch::async, [&] {
    return shown(Answer().result(numberAndName).row({1, "pump"}).waitFor(gate).row({2, "valve"}));
  });
  EXPECT_TRUE(gate.waitUntilReached());
  gate.open();
  EXPECT_THAT(lines.get(), ElementsAre("[Nr, Name]", "1, pump", "2, valve"));
}

TEST_F(ServerTrouble, ACommandThatTimesOutIsCancelled) {
  ASSERT_THAT(connect(), IsEmpty());
  odbc_.setTimeout(1);
  for (const Answer& answer : {Answer().silence(), Answer().result(numberAndName).row({1, "pump"}).silence()}) {
    const auto lines = shown(answer);
    ASSERT_THAT(lines, Not(IsEmpty()));
    EXPECT_THAT(lines, Contains(StartsWith("! HYT00")));
    EXPECT_THAT(shown(fine), ElementsAre("[Nr]", "1"));
  }
  EXPECT_EQ(server_.record().attentions, 2U);
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

/// More than fits into the buffers of two sockets.
Answer endless() {
  const std::string text(4000, 'x');
  return Answer().result(numberAndName).rows(5'000, [&](std::size_t i) -> std::vector<Value> { return {i, text}; });
}

TEST_F(ServerTrouble, AnAttentionEndsAnAnswer) {
  server_.answer("endless", endless());
  ASSERT_THAT(connect(), IsEmpty());
  odbc_.executeAndLeave("endless", 10);
  EXPECT_THAT(shown(fine), ElementsAre("[Nr]", "1"));
  EXPECT_EQ(server_.record().attentions, 1U);
}

TEST_F(ServerTrouble, AServerCanBeStoppedInTheMiddleOfAnUnreadAnswer) {
  server_.answer("endless", endless());
  ASSERT_THAT(connect(), IsEmpty());
  odbc_.executeAndLeave("endless", 1, [this] { server_.stop(); });
  EXPECT_EQ(server_.record().openConnections, 0U);
  EXPECT_EQ(server_.record().attentions, 0U);
}

}  // namespace
}  // namespace korvel::test::tds
