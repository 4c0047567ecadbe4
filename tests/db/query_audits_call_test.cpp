#include "db/procedure/query_audits_call.h"

#include <gtest/gtest.h>

#include "tests/db/collected_answer.h"

namespace korvel::db {
namespace {

constexpr std::string_view thirteen = "'1','2','3','4','5','6','7','8','9','10','11','12','13'";

/// The values with blanks between them; "-" where the text is no call of QueryAudits.
std::string values(std::string_view text) {
  const auto call = parseQueryAuditsCall(text);
  if (!call) return "-";
  std::string joined;
  for (const std::string& value : call->values) joined += (joined.empty() ? "" : " ") + value;
  return joined;
}

std::int32_t refusal(std::string_view text) {
  const auto error = test::errorOf([&] { (void)parseQueryAuditsCall(text); });
  return error ? error->number() : 0;
}

TEST(QueryAuditsCall, readsTheViewersOwnText) {
  EXPECT_EQ(values("QueryAudits 'True','False','False','False','True','False','False','False','False','False','True',"
                   "'2004-03-01 00:00:00.000','2004-03-07 23:59:59.999'"),
            "True False False False True False False False False False True "
            "2004-03-01 00:00:00.000 2004-03-07 23:59:59.999");
}

TEST(QueryAuditsCall, readsEverySpellingOfTheName) {
  const std::string expected = "1 2 3 4 5 6 7 8 9 10 11 12 13";
  for (const char* name : {"QueryAudits ", "queryaudits ", "QUERYAUDITS\t", "QueryAudits", "  \r\n QueryAudits\n",
                           "EXEC QueryAudits ", "execute QueryAudits ", "dbo.QueryAudits ", "EXEC DBO . queryaudits ",
                           "[QueryAudits] ", "[dbo].[QueryAudits]", "\"dbo\".\"QueryAudits\" ", "exec [queryAudits]",
                           "-- the standard query\nQueryAudits ", "/* a /* nested */ one */ EXEC/**/QueryAudits "})
    EXPECT_EQ(values(std::string(name) + std::string(thirteen)), expected) << name;
}

TEST(QueryAuditsCall, allowsAnEndingSemicolonAndComments) {
  for (const char* ending : {";", " ; ;", " -- done", "; /* done */", "\r\n"})
    EXPECT_EQ(values("QueryAudits " + std::string(thirteen) + ending), "1 2 3 4 5 6 7 8 9 10 11 12 13") << ending;
}

TEST(QueryAuditsCall, readsEveryFormOfAValue) {
  EXPECT_EQ(values("QueryAudits 'it''s', N'ü', n'x', \"d\"\"q\", [b]]r], True, 12, -1.5, '', '''', ',', '--', '/*'"),
            "it's ü x d\"q b]r True 12 -1.5  ' , -- /*");
}

TEST(QueryAuditsCall, readsValuesByName) {
  EXPECT_EQ(values("QueryAudits '1','2','3','4','5','6','7','8','9','10', @ToDate='c', @bdate = 'a', @FROMDATE=N'b'"),
            "1 2 3 4 5 6 7 8 9 10 a b c");
}

TEST(QueryAuditsCall, leavesOtherTextsAlone) {
  for (const char* text : {"",
                           "   ",
                           ";",
                           "SELECT * FROM Korvel_Audit_Trails",
                           "Select 'QueryAudits'",
                           "QueryAuditsOld '1'",
                           "QueryAudits2",
                           "QueryAudits$Old '1'",
                           "xQueryAudits '1'",
                           "EXEC OtherProcedure '1'",
                           "other.QueryAudits '1'",
                           "dbo.QueryAudits.x",
                           "EXEC",
                           "exec sp_help",
                           "'QueryAudits'",
                           "-- QueryAudits",
                           "/* QueryAudits",
                           "[QueryAudits",
                           "QueryAudits(1)",
                           "1 QueryAudits"})
    EXPECT_EQ(values(text), "-") << text;
}

TEST(QueryAuditsCall, refusesAWrongNumberOfValues) {
  EXPECT_EQ(refusal("QueryAudits"), 201);
  EXPECT_EQ(refusal("QueryAudits;"), 201);
  EXPECT_EQ(refusal("QueryAudits '1','2','3','4','5','6','7','8','9','10','11','12'"), 201);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + ",'14'"), 8144);
}

TEST(QueryAuditsCall, namesTheMissingParameter) {
  const auto error = test::errorOf(
      [] { (void)parseQueryAuditsCall("QueryAudits '1','2','3','4','5','6','7','8','9','10','11','12'"); });
  EXPECT_NE(error->description().find("@ToDate"), std::string::npos) << error->description();
}

TEST(QueryAuditsCall, refusesUnclosedAndStrayText) {
  EXPECT_EQ(refusal("QueryAudits '1','2"), 105);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + ",'"), 105);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + " /* "), 113);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + " SELECT 1"), 102);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + "; DROP TABLE x"), 102);
  EXPECT_EQ(refusal("QueryAudits " + std::string(thirteen) + ","), 102);
  EXPECT_EQ(refusal("QueryAudits ,'1'"), 102);
  EXPECT_EQ(refusal("QueryAudits '1' '2'"), 102);
}

TEST(QueryAuditsCall, refusesWrongNames) {
  EXPECT_EQ(refusal("QueryAudits @Nothing='1'"), 8145);
  EXPECT_EQ(refusal("QueryAudits @Alarms='1', @Alarms='2'"), 8143);
  EXPECT_EQ(refusal("QueryAudits @Alarms='1', '2'"), 119);
  EXPECT_EQ(refusal("QueryAudits @flag"), 137);
  EXPECT_EQ(refusal("QueryAudits '1', @Alarms=@flag"), 137);
}

}  // namespace
}  // namespace korvel::db
