#include "tests/db/connection_conformance.h"

#include "tests/db/audit_calls.h"
#include "tests/db/collected_answer.h"

namespace korvel::test {
namespace {

const std::vector<AuditEntry> plantRows = {
    {1, "2004-03-07 00:00:00.000", "UATemperature", "CHANGE", "CS"},
    {2, "2004-03-07 23:59:59.123", "vel_AlgText", "CHANGE", "CS"},
    {3, "2004-03-08 00:00:00.000", "MSRTPicture", "CHANGE", "CS"},
    {4, "2004-03-08 10:00:00.000", "PDETag", "CHANGE", "RT"},
    {5, "2004-03-09 10:00:00.000", "UATemperature", "VALUE", "RT"},
    {6, "2004-03-09 11:00:00.000", "Picture", "CLICK", "OA"},
    {7, "2004-03-10 10:00:00.000", "Picture", "CHECK_IN", "DC"},
    {8, "2004-03-10 11:00:00.000", "Picture", "CHECK_OUT", "DC"},
    {9, "2004-03-11 10:00:00.000", "Picture", "ROLLBACK", "DC"},
    {10, "2004-03-11 11:00:00.000", "Picture", "RESTORE", "DC"},
    {11, "2004-03-12 10:00:00.000", "Audit", "START", "AU"},
    {12, std::nullopt, std::nullopt, std::nullopt, std::nullopt},
};

/// The entry numbers of an answer, blanks between them, "/" between result sets.
std::string numbersOf(db::Connection& connection, const std::string& text) {
  std::string joined;
  for (const CollectedResult& result : resultsOf(connection, text)) {
    if (!joined.empty()) joined += " / ";
    std::string separator;
    for (const std::string& number : result.column(0)) {
      joined += separator + number;
      separator = " ";
    }
  }
  return joined;
}

TEST_P(ConnectionConformance, readsRowsInTableColumns) {
  const auto connection = connectTo(plantRows);
  const auto results = resultsOf(*connection, "Select * from Korvel_Audit_Trails");
  ASSERT_EQ(results.size(), 1U);
  std::string names;
  for (const db::Field& field : results[0].fields) names += field.name + " ";
  EXPECT_EQ(names,
            "Nr DateTime ProjectGUID DatabaseName ApplicationName TableName FieldName EventType EventItem OldValue "
            "NewValue PCName OSUser AppUser UserName AuditType Comments T1 ");
  EXPECT_EQ(results[0].fields[0].kind, db::ColumnKind::number);
  EXPECT_EQ(results[0].fields[1].kind, db::ColumnKind::dateTime);
  EXPECT_EQ(results[0].fields[5].kind, db::ColumnKind::text);
  EXPECT_EQ(results[0].rows.size(), plantRows.size());
  EXPECT_TRUE(results[0].ended);
}

TEST_P(ConnectionConformance, dateTimesReadWithMilliseconds) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(answerText(*connection, "SELECT DateTime FROM Korvel_Audit_Trails WHERE Nr = 2"),
            "DateTime\n2004-03-07 23:59:59.123\n");
}

TEST_P(ConnectionConformance, nullIsNotTheEmptyText) {
  const auto connection = connectTo(plantRows);
  const auto results = resultsOf(*connection, "SELECT Comments, NewValue FROM Korvel_Audit_Trails WHERE Nr = 1");
  EXPECT_FALSE(results.at(0).rows.at(0).at(0).has_value());
  EXPECT_EQ(results.at(0).rows.at(0).at(1), "");
}

TEST_P(ConnectionConformance, textsOfEveryScriptArriveWhole) {
  const std::string text = "Ölstand Ω Ж 漢字 🙂";
  const std::string longText(200, 'x');
  const auto connection = connectTo({{1, std::nullopt, text, longText, "CS"}});
  EXPECT_EQ(answerText(*connection, "SELECT TableName, EventType FROM Korvel_Audit_Trails"),
            "TableName|EventType\n" + text + "|" + longText + "\n");
}

TEST_P(ConnectionConformance, severalStatementsGiveSeveralResults) {
  const auto connection = connectTo({});
  EXPECT_EQ(answerText(*connection, "SELECT 1 AS a; SELECT 2 AS b, 'x' AS c;"), "a\n1\n--\nb|c\n2|x\n");
}

TEST_P(ConnectionConformance, emptyResultsHaveTheirFields) {
  const auto connection = connectTo({});
  EXPECT_EQ(answerText(*connection, "SELECT Nr, TableName FROM Korvel_Audit_Trails"), "Nr|TableName\n");
}

TEST_P(ConnectionConformance, comparesAsTheServerDoes) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(numbersOf(*connection, "SELECT Nr FROM Korvel_Audit_Trails WHERE AuditType = 'oa'"), "6");
  EXPECT_EQ(numbersOf(*connection, "SELECT Nr FROM dbo.Korvel_Audit_Trails WHERE TableName LIKE 'VEL_alg%'"), "2");
}

TEST_P(ConnectionConformance, wrongTextIsAnErrorAndTheConnectionLivesOn) {
  const auto connection = connectTo(plantRows);
  for (const char* text :
       {"SELEC 1", "SELECT Colour FROM Korvel_Audit_Trails", "SELECT * FROM Nowhere", "EXEC Nothing"}) {
    const auto error = errorOfText(*connection, text);
    ASSERT_TRUE(error) << text;
    EXPECT_NE(error->number(), 0) << text;
    EXPECT_FALSE(error->description().empty()) << text;
    EXPECT_EQ(answerText(*connection, "SELECT 1 AS a"), "a\n1\n") << text;
  }
}

TEST_P(ConnectionConformance, errorAfterAResultIsReported) {
  const auto connection = connectTo(plantRows);
  EXPECT_TRUE(errorOfText(*connection, "SELECT 1 AS a; SELECT * FROM Nowhere"));
}

TEST_P(ConnectionConformance, aSinkThatHasEnoughEndsTheAnswer) {
  const auto connection = connectTo(plantRows);
  CollectingSink sink(3);
  connection->execute("SELECT Nr FROM Korvel_Audit_Trails; SELECT 1 AS a", sink);
  ASSERT_EQ(sink.results.size(), 1U);
  EXPECT_EQ(sink.results[0].rows.size(), 3U);
  EXPECT_FALSE(sink.results[0].ended);
  EXPECT_EQ(answerText(*connection, "SELECT 1 AS a"), "a\n1\n");
}

TEST_P(ConnectionConformance, queryAuditsOfEachCategory) {
  const auto connection = connectTo(plantRows);
  struct Case {
    const char* parameter;
    const char* numbers;
  };
  for (const auto& [parameter, numbers] :
       {Case{"KorvelExplorer", "1 2 3"}, Case{"Alarms", "2 3"}, Case{"TagLogging", "4"}, Case{"UAcs", "1"},
        Case{"CustomActions", "6"}, Case{"UArt", "5"}, Case{"CheckIN", "7"}, Case{"CheckOUT", "8"},
        Case{"Rollback", "9"}, Case{"Restore", "10"}})
    EXPECT_EQ(numbersOf(*connection, auditCall(onlyFlag(parameter))), numbers) << parameter;
}

TEST_P(ConnectionConformance, queryAuditsOfAllTenIsOneResult) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(numbersOf(*connection, auditCall(allFlags())), "1 2 3 4 5 6 7 8 9 10 11 12");
}

TEST_P(ConnectionConformance, queryAuditsOfNineGivesNineResults) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(resultsOf(*connection, auditCall(allFlags().reset(2))).size(), 9U);
}

TEST_P(ConnectionConformance, queryAuditsOfNoneGivesNoResult) {
  const auto connection = connectTo(plantRows);
  EXPECT_TRUE(resultsOf(*connection, auditCall({})).empty());
}

TEST_P(ConnectionConformance, queryAuditsIgnoresDatesWithoutTheirFlag) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(numbersOf(*connection, auditCall(onlyFlag("KorvelExplorer"), "False", "nonsense", "")), "1 2 3");
}

TEST_P(ConnectionConformance, queryAuditsRefusesDatesThatAreNone) {
  const auto connection = connectTo(plantRows);
  EXPECT_TRUE(errorOfText(*connection, auditCall(onlyFlag("KorvelExplorer"), "True", "nonsense", "2004-03-07")));
}

TEST_P(ConnectionConformance, queryAuditsOfOneDayIsTheWholeDay) {
  const auto connection = connectTo(plantRows);
  EXPECT_EQ(numbersOf(*connection, auditCall(onlyFlag("KorvelExplorer"), "True", "2004-03-07 00:00:00.000",
                                             "2004-03-07 23:59:59.990")),
            "1 2");
}

TEST_P(ConnectionConformance, queryAuditsLimitsAlarmTablesByNoDate) {
  const auto connection = connectTo(plantRows);
  const Flags alarms = onlyFlag("Alarms");
  EXPECT_EQ(numbersOf(*connection, auditCall(alarms, "True", "2004-03-08 00:00:00.000", "2004-03-08 23:59:59.990")),
            "2 3");
  EXPECT_EQ(numbersOf(*connection, auditCall(alarms, "True", "2001-01-01 00:00:00.000", "2001-01-01 23:59:59.990")),
            "2");
}

TEST_P(ConnectionConformance, queryAuditsGivesAllColumns) {
  const auto connection = connectTo(plantRows);
  for (const Flags& flags : {allFlags(), onlyFlag("Alarms"), onlyFlag("UArt")})
    EXPECT_EQ(resultsOf(*connection, auditCall(flags)).at(0).fields.size(), 18U);
}

TEST_P(ConnectionConformance, queryAuditsRefusesAWrongCall) {
  const auto connection = connectTo(plantRows);
  EXPECT_TRUE(errorOfText(*connection, "QueryAudits 'True'"));
  EXPECT_TRUE(errorOfText(*connection, auditCall(allFlags()) + ",'more'"));
}

}  // namespace
}  // namespace korvel::test
