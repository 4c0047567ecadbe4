#include "tests/tds_server/tests/server_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::vector<Column> number{{"Nr", "int"}};
const Message missing{208, "Invalid object name 'x'."};
const char* const missingShown = "! 42S02 208 Invalid object name 'x'.";

class ServerAnswers : public ServerTest {};

TEST_F(ServerAnswers, OneResult) {
  EXPECT_THAT(shown(Answer().result({{"Nr", "int"}, {"Name", "nvarchar(30)"}}).row({1, "pump"}).row({2, null})),
              ElementsAre("[Nr, Name]", "1, pump", "2, NULL"));
}

TEST_F(ServerAnswers, NothingAtAll) {
  EXPECT_THAT(shown(Answer()), IsEmpty());
}

TEST_F(ServerAnswers, SeveralResultsSomeOfThemEmpty) {
  EXPECT_THAT(shown(Answer().result(number).row({1}).result(number).result(number).row({3})),
              ElementsAre("[Nr]", "1", "[Nr]", "[Nr]", "3"));
}

TEST_F(ServerAnswers, RowCountsBetweenResults) {
  EXPECT_THAT(shown(Answer().affected(5).result(number).row({1}).affected(7).result(number).row({2}).affected(0)),
              ElementsAre("(5)", "[Nr]", "1", "(7)", "[Nr]", "2", "(0)"));
}

TEST_F(ServerAnswers, AProceduresResults) {
  EXPECT_THAT(shown(Answer().procedure().result(number).row({1}).result(number).row({2})),
              ElementsAre("[Nr]", "1", "[Nr]", "2"));
}

TEST_F(ServerAnswers, ErrorFirst) {
  EXPECT_THAT(shown(Answer().error(missing)), ElementsAre(missingShown));
}

TEST_F(ServerAnswers, ErrorBetweenResults) {
  EXPECT_THAT(shown(Answer().result(number).row({1}).done().error(missing).result(number).row({2})),
              ElementsAre("[Nr]", "1", missingShown));
}

TEST_F(ServerAnswers, ErrorAfterRows) {
  EXPECT_THAT(shown(Answer().result(number).row({1}).row({2}).error({1205, "You lost.", 13, 45, 7})),
              ElementsAre("[Nr]", "1", "2", "! 42000 1205 You lost."));
}

TEST_F(ServerAnswers, PrintedTextIsSeen) {
  EXPECT_THAT(shown(Answer().print("Fünf vor zwölf")), ElementsAre("! 01000 0 Fünf vor zwölf"));
  EXPECT_THAT(shown(Answer().result(number).row({1}).done().print("between").result(number).row({2})),
              ElementsAre("[Nr]", "1", "! 01000 0 between", "[Nr]", "2"));
  EXPECT_THAT(shown(Answer().result(number).row({1}).warning({8153, "Null value eliminated."}).row({2})),
              ElementsAre("[Nr]", "1", "! 01003 8153 Null value eliminated.", "2"));
  EXPECT_THAT(shown(Answer().procedure().result(number).row({1}).done().print("last")),
              ElementsAre("[Nr]", "1", "! 01000 0 last"));
}

TEST_F(ServerAnswers, CommandsAreOnRecordToTheLetter) {
  const std::string call = "QueryAudits 'True','False','Ö 🛢'";
  server_.answer(call, Answer().procedure().result(number).row({1}));
  ASSERT_THAT(connect("Encryption=off;UID=reader;PWD=secret;"), IsEmpty());
  EXPECT_THAT(odbc_.execute(call), ElementsAre("[Nr]", "1"));
  EXPECT_THAT(odbc_.execute("SET NOCOUNT ON"), IsEmpty());
  EXPECT_THAT(server_.texts(), ElementsAre(call, "SET NOCOUNT ON"));
  EXPECT_FALSE(server_.record().commands[0].isCall());
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

TEST_F(ServerAnswers, ACallThatTheDriverMakesItselfIsOnRecord) {
  server_.answer("EXEC QueryAudits 'True', 'x'", Answer().procedure().result(number).row({1}));
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_THAT(odbc_.execute("{call QueryAudits('True','x')}"), ElementsAre("[Nr]", "1"));
  EXPECT_THAT(server_.record().commands[0].parameters, ElementsAre("True", "x"));
}

TEST_F(ServerAnswers, APreparedStatementIsAnsweredLikeABatch) {
  server_.answer("SELECT 1", Answer().result(number).row({1}));
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_THAT(odbc_.prepareAndExecute("SELECT 1"), ElementsAre("[Nr]", "1"));
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

TEST_F(ServerAnswers, ACommandWithoutAnAnswerIsAnErrorAndAProblem) {
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_THAT(odbc_.execute("SELECT 2"), ElementsAre("! 42000 50000 nothing has been scripted for: SELECT 2"));
  EXPECT_THAT(server_.record().problems, ElementsAre("nothing has been scripted for: SELECT 2"));
}

TEST_F(ServerAnswers, OtherCommandsCanBeAnsweredByAFunction) {
  server_.answerOthers([](const Command& command) { return Answer().print("said " + command.text); });
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_THAT(odbc_.execute("anything"), ElementsAre("! 01000 0 said anything"));
}

TEST_F(ServerAnswers, PacketsOfEverySizeCarryTheSame) {
  std::vector<std::string> expected{"[Nr, Name]"};
  for (int i = 0; i < 2000; ++i) expected.push_back(std::to_string(i) + ", Pumpe " + std::to_string(i));
  const auto answer =
      Answer().result({{"Nr", "int"}, {"Name", "nvarchar(30)"}}).rows(2000, [](std::size_t i) -> std::vector<Value> {
        return {i, "Pumpe " + std::to_string(i)};
      });
  for (const std::size_t limit : {512U, 1000U, 4096U}) {
    server_.limitPackets(limit);
    ASSERT_THAT(connect(), IsEmpty());
    EXPECT_EQ(shown(answer), expected) << "packets of " << limit;
  }
}

TEST_F(ServerAnswers, SeveralClientsAtOnceGetTheirOwn) {
  server_.answerOthers([](const Command& command) {
    return Answer().result({{"Who", "nvarchar(30)"}}).rows(500, [&](std::size_t) -> std::vector<Value> {
      return {command.text};
    });
  });
  std::vector<std::vector<std::string>> seen(4);
  std::vector<std::thread> clients;
  for (std::size_t i = 0; i < seen.size(); ++i) {
    clients.emplace_back([this, i, &seen] {
      BareOdbc odbc;
      if (odbc.connect(freeTdsString(driver_, server_.port(), "Encryption=off;UID=a;PWD=b;")).empty())
        seen[i] = odbc.execute("client " + std::to_string(i));
    });
  }
  for (std::thread& client : clients) client.join();
  for (std::size_t i = 0; i < seen.size(); ++i) {
    ASSERT_THAT(seen[i], SizeIs(501));
    seen[i].erase(seen[i].begin());
    EXPECT_THAT(seen[i], Each("client " + std::to_string(i)));
  }
  EXPECT_TRUE(server_.waitUntilDisconnected());
  EXPECT_EQ(server_.record().connections, 4U);
}

TEST_F(ServerAnswers, AWholeAuditTrailIsOneAnswer) {
  std::vector<Column> columns;
  columns.reserve(18);
  for (int i = 0; i < 18; ++i) columns.emplace_back("c" + std::to_string(i), "nvarchar(30)");
  const std::vector<Value> row(18, Value("Ölpumpe 4711"));
  server_.answer("go", Answer().result(columns).rows(45'000, [&](std::size_t) { return std::vector<Value>(row); }));
  ASSERT_THAT(connect(), IsEmpty());
  EXPECT_EQ(odbc_.executeAndCount("go"), 45'000U * 18U);
}

}  // namespace
}  // namespace korvel::test::tds
