#include "control/answer_record.h"

#include "tests/control/viewer_fixture.h"

namespace korvel::test {
namespace {

using control::AnswerRecord;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using AnswerRecordTest = ViewerTest;

TEST_F(AnswerRecordTest, IsOfTheDatabaseThatWasSelectedWhenTheQueryBegan) {
  server.identity = {"Engine 12", "reader"};
  control::libraryState().connection.CurrentServer = "S";
  control::libraryState().connection.CurrentDatabase = "D";
  const AnswerRecord record;
  control::libraryState().connection.CurrentServer = "Other";
  static_cast<void>(record.connector()("", {}));
  const evidence::Manifest told = record.custom("select 1", 7);
  EXPECT_EQ(told.program, "KorvelAuditViewer");
  EXPECT_NE(told.programVersion, "");
  EXPECT_EQ(told.source.server, "S");
  EXPECT_EQ(told.source.database, "D");
  EXPECT_EQ(told.source.engine, "Engine 12");
  EXPECT_EQ(told.source.login, "reader");
  EXPECT_EQ(told.question.text, "select 1");
  EXPECT_THAT(told.question.categories, IsEmpty());
  ASSERT_EQ(told.lists.size(), 1U);
  EXPECT_EQ(told.lists[0].rows, 7U);
  EXPECT_FALSE(told.isComplete) << "nobody knows the limits of such a query";
}

TEST_F(AnswerRecordTest, NotesThatAnAnswerWasCut) {
  control::libraryState().language = settings::LanguageOffset("10000");
  const query::CategoryFlags flags = query::CategoryFlags().set(1).set(2);
  const evidence::Manifest cut =
      AnswerRecord().standard(flags, {}, {query::QueryOutcome::filled, std::nullopt, {0}, 2}, query::makeResultLists());
  EXPECT_THAT(cut.limitReached, ElementsAre("Configuration / Alarms"));
  ASSERT_EQ(cut.notes.size(), 1U);
  EXPECT_THAT(cut.notes[0], ::testing::HasSubstr("5000-row limit")) << "in English, as all of a manifest";
  query::CompletionReport completion;
  completion.outcome = query::QueryOutcome::filled;
  const evidence::Manifest completed = AnswerRecord().completed(flags, {}, completion, query::makeResultLists());
  EXPECT_TRUE(completed.question.beyondLimit);
  EXPECT_EQ(completed.isComplete, true);
  EXPECT_EQ(completed.notes.size(), 1U);
}

}  // namespace
}  // namespace korvel::test
