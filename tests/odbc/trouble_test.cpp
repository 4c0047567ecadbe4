#include <chrono>
#include <thread>

#include "db/odbc/odbc_connection.h"
#include "query/standard_query.h"
#include "tests/odbc/full_port.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using query::QueryOutcome;
using tds::Answer;
using tds::Moment;
using tds::Steps;
using ::testing::AnyOf;
using ::testing::Not;

using Clock = std::chrono::steady_clock;

const std::vector<tds::Column> numberAndName{{"Nr", "int"}, {"Name", "nvarchar(30)"}};

/// Failures on the wire and their messages: ours, or else the server's number.
struct Trouble {
  const char* name;
  Answer answer;
  const char* key;
  std::int32_t serversNumber = 0;
};

Answer begun() {
  return Answer().result(numberAndName).row({1, "pump"});
}

std::vector<Trouble> breaks() {
  const tds::Message missing{208, "Invalid object name 'x'."};
  return {
      {"closed before the answer", Answer().close(), "failure.connectionLost"},
      {"reset before the answer", Answer().reset(), "failure.connectionLost"},
      {"closed in a row", begun().row({2, "valve"}).cut(4).close(), "failure.connectionLost"},
      {"reset in a row", begun().row({2, "valve"}).cut(4).reset(), "failure.connectionLost"},
      {"closed after a row", begun().close(), "failure.connectionLost"},
      {"closed in the columns", Answer().result(numberAndName).cut(5).close(), "failure.connectionLost"},
      {"closed between results", begun().done().close(), "failure.connectionLost"},
      {"reset between results", begun().done().reset(), "failure.connectionLost"},
      {"closed after a row count", Answer().affected(3).close(), "failure.connectionLost"},
      {"closed after printed text", begun().done().print("x").close(), "failure.connectionLost"},
      {"closed after an error token", Answer().bareError(missing).close(), "", 208},
  };
}

std::vector<Trouble> nonsense() {
  return {
      {"no packet", Answer().raw("\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"s).close(), "failure.connectionLost"},
      {"another protocol", Answer().raw("HTTP/1.1 400 Bad Request\r\n\r\n").close(), "failure.connectionLost"},
      {"a packet longer than what comes", Answer().raw("\x04\x01\xFF\xFF\x00\x00\x01\x00\x81"s).close(),
       "failure.connectionLost"},
      {"a packet shorter than its header", Answer().raw("\x04\x01\x00\x03\x00\x00\x01\x00"s).close(),
       "failure.connectionLost"},
      {"unknown tokens", Answer().tokens("\x01\x02\x03"s).abandon(), "failure.connectionLost"},
      {"all bytes there are",
       Answer()
           .tokens([] {
             std::string bytes;
             for (int i = 0; i < 20'000; ++i) bytes += static_cast<char>(i * 7919 / 13);
             return bytes;
           }())
           .close(),
       "failure.connectionLost"},
      {"too many columns", Answer().tokens("\x81\xFE\xFF"s + std::string(5000, '\x26')).close(),
       "failure.connectionLost"},
      {"an integer of nine bytes", Answer().result(numberAndName).tokens("\xD1\x09"s + std::string(40, 'x')).close(),
       "failure.connectionLost"},
      {"a text longer than its column",
       Answer().result(numberAndName).tokens("\xD1\x04\x01\x00\x00\x00\xF0\xFF"s + std::string(70'000, 'x')).close(),
       "failure.connectionLost"},
      {"a long text without end",
       Answer()
           .result({{"a", "nvarchar(max)"}})
           .tokens("\xD1\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"s)
           .close(),
       "failure.connectionLost"},
      {"rows without columns", Answer().tokens("\xD1\x04\x01\x00\x00\x00"s).close(), "failure.connectionLost"},
      {"an error longer than what comes", Answer().tokens("\xAA\xFF\xFF\x01"s).close(), "failure.connectionLost"},
  };
}

std::vector<Trouble> silences() {
  return {
      {"nothing", Answer().silence(), "failure.commandTimeout"},
      {"silence in a row", begun().row({2, "valve"}).cut(4).silence(), "failure.commandTimeout"},
      {"silence after a row", begun().silence(), "failure.commandTimeout"},
      {"silence between results", begun().done().silence(), "failure.commandTimeout"},
      {"an answer without end", begun().abandon(), "failure.commandTimeout"},
      {"half a packet", Answer().raw("\x04\x01\x0F\xFF\x00\x00\x01\x00\x81"s).silence(), "failure.commandTimeout"},
  };
}

class OdbcTrouble : public WireTest {
 protected:
  /// The standard query over the wire, as the viewer runs it.
  query::QueryReport query() {
    query::FilterTree tree;
    tree.selectAll();
    const query::DateRange range;
    return query::runStandardQuery(
        {tree, range, {}},
        [&](std::string_view, const std::stop_token& stop) {
          access_.stop = stop;
          return connect();
        },
        lists_, 0, attendance_, environment_);
  }
  static Answer fine() {
    std::vector<tds::Column> columns{{"Nr", "int"}};
    std::vector<tds::Value> row{1};
    for (int i = 1; i < 18; ++i) {
      columns.emplace_back(i == 15 ? "AuditType" : "c" + std::to_string(i), "nvarchar(30)");
      row.emplace_back(i == 15 ? "CS" : "x");
    }
    return Answer().procedure().result(columns).row(row);
  }
  void answerQueries(const Answer& answer) {
    server_.answerOthers([answer](const tds::Command&) { return answer; });
  }

  void expectNothingShown() {
    for (const auto& list : lists_) EXPECT_EQ(list.rowCount(), 0U);
  }
  void expectThatTheNextQueryWorks() {
    answerQueries(fine());
    EXPECT_EQ(query().outcome, QueryOutcome::filled);
    EXPECT_EQ(lists_[0].rowCount(), 1U);
    EXPECT_EQ(lists_[1].rowCount(), 1U);
    EXPECT_TRUE(server_.waitUntilDisconnected());
  }
  void expectFailure(const Trouble& trouble) {
    SCOPED_TRACE(trouble.name);
    answerQueries(trouble.answer);
    const auto report = query();
    EXPECT_EQ(report.outcome, QueryOutcome::failed);
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->textKey(), trouble.key) << report.failure->description();
    if (trouble.serversNumber != 0) {
      EXPECT_EQ(report.failure->number(), trouble.serversNumber);
    }
    EXPECT_FALSE(report.failure->description().empty());
    expectNothingShown();
    expectThatTheNextQueryWorks();
  }
  void withoutEncryption() {
    server_.setEncryption(tds::Encryption::unsupported);
    access_.options.encrypt = false;
  }

  query::ResultLists lists_ = query::makeResultLists();
  db::WaitCallback attendance_;
  query::QueryEnvironment environment_;
};

TEST_F(OdbcTrouble, theCallArrivesToTheLetter) {
  answerQueries(fine());
  EXPECT_EQ(query().outcome, QueryOutcome::filled);
  const auto texts = server_.texts();
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0],
            "QueryAudits 'True','True','True','True','True','True','True','True','True','True','False','False',"
            "'False'");
  EXPECT_THAT(server_.record().problems, ::testing::IsEmpty());
}

TEST_F(OdbcTrouble, theConnectionEndsInTheAnswer) {
  for (const Trouble& trouble : breaks()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theConnectionEndsInTheAnswerWithoutEncryption) {
  withoutEncryption();
  for (const Trouble& trouble : breaks()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theAnswerIsNonsense) {
  access_.options.commandTimeout = 1s;
  for (const Trouble& trouble : nonsense()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theAnswerIsNonsenseWithoutEncryption) {
  withoutEncryption();
  access_.options.commandTimeout = 1s;
  for (const Trouble& trouble : nonsense()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theServerFallsSilentInTheAnswer) {
  access_.options.commandTimeout = 1s;
  for (const Trouble& trouble : silences()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theServerFallsSilentInTheAnswerWithoutEncryption) {
  withoutEncryption();
  access_.options.commandTimeout = 1s;
  for (const Trouble& trouble : silences()) expectFailure(trouble);
}

TEST_F(OdbcTrouble, theLastRowsAreNotShownWhenTheAnswerBreaksOff) {
  answerQueries(fine().done().close());
  EXPECT_EQ(query().outcome, QueryOutcome::failed);
  expectNothingShown();
  expectThatTheNextQueryWorks();
}

TEST_F(OdbcTrouble, aDriverThatWaitsTwiceAsLongIsStopped) {
  // With half a packet on the wire FreeTDS lets its timeout pass twice.
  withoutEncryption();
  constexpr auto timeout = 3s;
  access_.options.commandTimeout = timeout;
  answerQueries(Answer().raw("\x04\x01\x0F\xFF\x00\x00\x01\x00\x81"s).silence());
  const auto before = Clock::now();
  EXPECT_EQ(query().failure->textKey(), "failure.commandTimeout");
  EXPECT_LT(Clock::now() - before, 2 * timeout);
  expectThatTheNextQueryWorks();
}

const std::vector<Moment> moments = {Moment::accepted, Moment::preloginReceived, Moment::preloginAnswered,
                                     Moment::loginReceived};

TEST_F(OdbcTrouble, theConnectionEndsAtEveryMomentOfTheLogin) {
  for (const Moment moment : moments) {
    for (const Steps& steps :
         {Steps().close(), Steps().reset(), Steps().raw("HTTP/1.1 400 Bad Request\r\n\r\n").close(),
          Steps().raw(std::string(5000, '\x04')).close(),
          Steps().raw("\x04\x01\x00\x09\x00\x00\x01\x00\xFF"s).close()}) {
      SCOPED_TRACE(static_cast<int>(moment));
      server_.at(moment, steps);
      const auto report = query();
      EXPECT_EQ(report.outcome, QueryOutcome::failed);
      EXPECT_THAT(report.failure->textKey(),
                  AnyOf("failure.portClosed", "failure.noServer", "failure.handshake", "failure.loginBroken"))
          << report.failure->description();
      expectNothingShown();
      server_.at(moment, Steps());
      expectThatTheNextQueryWorks();
    }
  }
}

TEST_F(OdbcTrouble, theServerStaysSilentAtEveryMomentOfTheLogin) {
  access_.options.connectionTimeout = 1s;
  for (const Moment moment : moments) {
    SCOPED_TRACE(static_cast<int>(moment));
    server_.at(moment, Steps().silence());
    const auto report = query();
    EXPECT_EQ(report.outcome, QueryOutcome::failed);
    EXPECT_EQ(report.failure->textKey(),
              moment == Moment::loginReceived ? "failure.loginSilent" : "failure.serverSilent");
    expectNothingShown();
    server_.at(moment, Steps());
    expectThatTheNextQueryWorks();
  }
}

TEST_F(OdbcTrouble, theServerDripsNonsenseDuringTheLogin) {
  access_.options.connectionTimeout = 1s;
  for (const Moment moment : moments) {
    SCOPED_TRACE(static_cast<int>(moment));
    server_.at(moment, Steps().raw("\x04\x01\x0F\xFF\x00\x00\x01\x00\x81"s).silence());
    EXPECT_EQ(query().outcome, QueryOutcome::failed);
    server_.at(moment, Steps());
    expectThatTheNextQueryWorks();
  }
}

/// The driver alone, without our own steps before it, on a server that stops answering in between.
TEST_F(OdbcTrouble, theDriverItselfDoesNotWaitForEver) {
  for (const bool encrypted : {true, false}) {
    if (!encrypted) withoutEncryption();
    for (const Moment moment : moments) {
      SCOPED_TRACE(static_cast<int>(moment));
      server_.at(moment, Steps().silence());
      db::odbc::LoginRequest request;
      request.driver = {access_.options.driver, db::odbc::DriverFamily::freeTds};
      request.address = {"localhost", server_.port()};
      request.options = access_.options;
      request.options.connectionTimeout = 60s;  // the driver decides what to do with it
      const auto error = errorOf([&] {
        const db::odbc::OdbcConnection connection(request, access_.driverText(request), db::net::Deadline(1s));
      });
      ASSERT_TRUE(error);
      EXPECT_EQ(error->textKey(), "failure.loginSilent");
      server_.at(moment, Steps());
    }
  }
  expectThatTheNextQueryWorks();
}

TEST_F(OdbcTrouble, otherConnectionsOutliveALoginThatIsEnded) {
  const auto other = connect();
  server_.at(Moment::loginReceived, Steps().silence());
  access_.options.connectionTimeout = 1s;
  EXPECT_EQ(connectError()->textKey(), "failure.loginSilent");
  server_.answer("go", begun());
  EXPECT_EQ(answerText(*other, "go"), "Nr|Name\n1|pump\n");
}

TEST_F(OdbcTrouble, otherConnectionsOutliveACommandThatIsEnded) {
  withoutEncryption();
  access_.options.commandTimeout = 1s;
  const auto first = connect();
  const auto second = connect();
  server_.answer("half", Answer().raw("\x04\x01\x0F\xFF\x00\x00\x01\x00\x81"s).silence());
  EXPECT_EQ(errorOfText(*second, "half")->textKey(), "failure.commandTimeout");
  server_.answer("go", begun());
  EXPECT_EQ(answerText(*first, "go"), "Nr|Name\n1|pump\n");
}

TEST_F(OdbcTrouble, aClosedPortAndAnUnknownComputer) {
  const std::string server = serverName();
  server_.stop();
  EXPECT_EQ(errorOf([&] { (void)db::odbc::openServer(server, "D", access_); })->textKey(), "failure.portClosed");
  EXPECT_EQ(errorOf([&] { (void)db::odbc::openServer("no-such-computer.invalid", "D", access_); })->textKey(),
            "failure.hostUnknown");
}

TEST_F(OdbcTrouble, aPortThatAcceptsNothingIsGivenUp) {
  const FullPort full;
  access_.options.connectionTimeout = 1s;
  const auto error = errorOf([&] { (void)db::odbc::openServer(full.serverName(), "D", access_); });
  EXPECT_EQ(error->textKey(), "failure.portSilent");
}

TEST_F(OdbcTrouble, aCommandWithoutTimeoutWaits) {
  access_.options.commandTimeout = 0s;
  const tds::Gate gate;
  server_.answer("wait", begun().waitFor(gate).row({2, "valve"}));
  std::thread opener([&] {
    (void)gate.waitUntilReached();
    gate.open();
  });
  EXPECT_EQ(answerText(connection(), "wait"), "Nr|Name\n1|pump\n2|valve\n");
  opener.join();
}

}  // namespace
}  // namespace korvel::test
