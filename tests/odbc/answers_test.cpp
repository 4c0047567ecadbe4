#include <chrono>

#include "settings/string_table.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using tds::Answer;
using tds::Message;
using tds::null;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<tds::Column> number{{"Nr", "int"}};
const Message missing{208, "Invalid object name 'x'.", 16, 1, 7};

class OdbcAnswers : public WireTest {};

TEST_F(OdbcAnswers, oneResult) {
  EXPECT_EQ(text(Answer().result({{"Nr", "int"}, {"Name", "nvarchar(30)"}}).row({1, "pump"}).row({2, null})),
            "Nr|Name\n1|pump\n2|NULL\n");
}

TEST_F(OdbcAnswers, nothingAtAll) {
  EXPECT_EQ(text(Answer()), "");
}

TEST_F(OdbcAnswers, severalResultsSomeOfThemEmpty) {
  const Answer answer = Answer().result(number).row({1}).result({{"a", "xml"}}).result(number).row({3}).result(number);
  EXPECT_EQ(text(answer), "Nr\n1\n--\na\n--\nNr\n3\n--\nNr\n");
  for (const CollectedResult& result : results(answer)) EXPECT_TRUE(result.ended);
}

TEST_F(OdbcAnswers, rowCountsAreNoResults) {
  EXPECT_EQ(text(Answer().affected(5).result(number).row({1}).affected(7).result(number).row({2}).affected(0)),
            "Nr\n1\n--\nNr\n2\n");
  EXPECT_EQ(text(Answer().affected(5).affected(6)), "");
}

TEST_F(OdbcAnswers, aProceduresResults) {
  EXPECT_EQ(text(Answer().procedure().result(number).row({1}).result(number).result(number).row({2})),
            "Nr\n1\n--\nNr\n--\nNr\n2\n");
}

TEST_F(OdbcAnswers, printedTextAndWarningsAreNoErrors) {
  const Message warning{8153, "Warning: Null value is eliminated.", 10};
  EXPECT_EQ(text(Answer()
                     .print("first")
                     .result(number)
                     .row({1})
                     .print("among rows")
                     .row({2})
                     .done()
                     .print("between")
                     .warning(warning)
                     .result(number)
                     .row({3})
                     .warning(warning)),
            "Nr\n1\n2\n--\nNr\n3\n");
  EXPECT_EQ(text(Answer().print("alone")), "");
}

TEST_F(OdbcAnswers, anErrorFirst) {
  const auto got = error(Answer().error(missing));
  ASSERT_TRUE(got);
  EXPECT_EQ(got->number(), 208);
  EXPECT_EQ(got->description(), "Invalid object name 'x'.");
  EXPECT_TRUE(got->textKey().empty());
}

TEST_F(OdbcAnswers, anErrorNamesTheLineOfTheText) {
  const std::string sixLines = "1\r\n2\n3\n4\n5\n";
  server_.answer(sixLines + "\nseven", Answer().error(missing));
  EXPECT_EQ(errorOfText(connection(), sixLines + "\nseven")->line(), 7);
  // A seventh line that the text does not have is one of a procedure.
  server_.answer(sixLines + "six", Answer().error(missing));
  EXPECT_EQ(errorOfText(connection(), sixLines + "six")->line(), std::nullopt);
}

TEST_F(OdbcAnswers, anErrorAfterPrintedText) {
  EXPECT_EQ(error(Answer().print("working").error(missing))->number(), 208);
}

TEST_F(OdbcAnswers, anErrorBetweenResults) {
  server_.answer("go", Answer().result(number).row({1}).done().error(missing).result(number).row({2}));
  CollectingSink sink;
  EXPECT_EQ(errorOf([&] { connection().execute("go", sink); })->number(), 208);
  ASSERT_EQ(sink.results.size(), 1U);
  EXPECT_TRUE(sink.results[0].ended);
}

TEST_F(OdbcAnswers, anErrorAfterRows) {
  server_.answer("go", Answer().result(number).row({1}).row({2}).error({1205, "You lost.", 13, 45, 7}));
  CollectingSink sink;
  const auto got = errorOf([&] { connection().execute("go", sink); });
  EXPECT_EQ(got->number(), 1205);
  EXPECT_EQ(got->description(), "You lost.");
  EXPECT_FALSE(sink.results.at(0).ended);
}

TEST_F(OdbcAnswers, theFirstOfSeveralErrorsCounts) {
  EXPECT_EQ(error(Answer().error(missing).error({50000, "and more", 16}))->number(), 208);
}

TEST_F(OdbcAnswers, wordsOfEveryScriptAndLengthInErrors) {
  const std::string longText = "Ungültig: " + std::string(1500, 'x') + " Ж 漢字 🙂";
  EXPECT_EQ(error(Answer().error({50000, longText}))->description(), longText);
  EXPECT_EQ(error(Answer().error({50001, "[bracketed] text [stays]"}))->description(), "[bracketed] text [stays]");
}

TEST_F(OdbcAnswers, theConnectionLivesOnAfterAnError) {
  for (const Answer& answer : {Answer().error(missing), Answer().result(number).row({1}).error(missing)}) {
    EXPECT_TRUE(error(answer));
    EXPECT_EQ(text(Answer().result(number).row({1})), "Nr\n1\n");
  }
}

TEST_F(OdbcAnswers, commandsArriveUnchangedAndAlone) {
  const std::string call = "QueryAudits 'True','False','Ö 🛢 it''s'";
  server_.answer(call, Answer().procedure().result(number).row({1}));
  EXPECT_EQ(answerText(connection(), call), "Nr\n1\n");
  EXPECT_THAT(server_.texts(), ElementsAre(call));
  EXPECT_FALSE(server_.record().commands.at(0).isCall());
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

TEST_F(OdbcAnswers, longCommandsArriveWhole) {
  const std::string command = "SELECT '" + std::string(100'000, 'x') + "ä'";
  server_.answer(command, Answer().result(number).row({1}));
  EXPECT_EQ(answerText(connection(), command), "Nr\n1\n");
}

TEST_F(OdbcAnswers, aSinkThatHasEnoughEndsTheAnswer) {
  server_.answer("endless",
                 Answer().result(number).rows(200'000, [](std::size_t i) -> std::vector<tds::Value> { return {i}; }));
  CollectingSink sink(10);
  connection().execute("endless", sink);
  EXPECT_EQ(sink.results.at(0).rows.size(), 10U);
  EXPECT_FALSE(sink.results[0].ended);
  EXPECT_EQ(text(Answer().result(number).row({1})), "Nr\n1\n");
}

/// Stops after two result sets.
class TwoResultsSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field>) override {}
  bool row(std::span<const db::Cell>) override { return ++rows > 0; }
  void endResult() override { ++ended; }
  bool shouldContinue() override { return ended < 2; }

  int rows = 0;
  int ended = 0;
};

TEST_F(OdbcAnswers, aSinkThatDoesNotWantToGoOnEndsTheAnswer) {
  Answer answer;
  for (int i = 0; i < 5; ++i) answer.result(number).row({i});
  server_.answer("five", answer);
  TwoResultsSink sink;
  connection().execute("five", sink);
  EXPECT_EQ(sink.ended, 2);
  EXPECT_EQ(sink.rows, 2);
  connection().execute("never sent", sink);
  EXPECT_EQ(sink.rows, 2);
  EXPECT_EQ(text(Answer().result(number).row({1})), "Nr\n1\n");
}

class ThrowingSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field>) override {}
  bool row(std::span<const db::Cell>) override { throw Error(7, "no room"); }
  void endResult() override {}
};

TEST_F(OdbcAnswers, aSinkThatFailsEndsTheAnswer) {
  server_.answer("go", Answer().result(number).row({1}).row({2}));
  ThrowingSink sink;
  EXPECT_EQ(errorOf([&] { connection().execute("go", sink); })->number(), 7);
  EXPECT_EQ(text(Answer().result(number).row({1})), "Nr\n1\n");
}

TEST_F(OdbcAnswers, connectionsCloseWithTheirObjects) {
  (void)connection();
  connection_.reset();
  EXPECT_TRUE(server_.waitUntilDisconnected());
}

TEST_F(OdbcAnswers, severalConnectionsAtOnce) {
  const auto first = connect();
  const auto second = connect();
  server_.answer("go", Answer().result(number).row({1}));
  EXPECT_EQ(answerText(*second, "go"), "Nr\n1\n");
  EXPECT_EQ(answerText(*first, "go"), "Nr\n1\n");
}

}  // namespace
}  // namespace korvel::test
