#include <gtest/gtest.h>

#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_calls.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/db/plain_evaluation.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using test::AuditEntry;
using test::belongs;
using test::Flags;
using test::nastyRows;
using test::Range;

/// Entry numbers of each result set, blanks between them, "/" after each set.
std::string expectedAnswer(const std::vector<AuditEntry>& entries, const Flags& flags, const Range* range,
                           std::size_t limit = 5000) {
  std::string answer;
  const auto addSet = [&](auto wanted) {
    std::size_t count = 0;
    for (const AuditEntry& entry : entries)
      if (count < limit && wanted(entry)) {
        answer += std::to_string(entry.number) + " ";
        ++count;
      }
    answer += "/";
  };
  if (flags.all()) {
    addSet([&](const AuditEntry& entry) { return range == nullptr || range->contains(entry); });
    return answer;
  }
  for (std::size_t category = 0; category < flags.size(); ++category)
    if (flags[category]) addSet([&](const AuditEntry& entry) { return belongs(entry, category, range); });
  return answer;
}

std::string numbersOf(Connection& connection, const std::string& call) {
  std::string answer;
  for (const test::CollectedResult& result : test::resultsOf(connection, call)) {
    for (const std::string& number : result.column(0)) answer += number + " ";
    answer += "/";
  }
  return answer;
}

const Range march{"2004-03-07 00:00:00.000", "2004-03-09 23:59:59.999"};

class QueryAuditsAnswer : public testing::Test {
 protected:
  void expectEveryCombination(Connection& connection, const std::vector<AuditEntry>& entries) {
    for (unsigned long bits = 0; bits < 1024; ++bits) {
      const Flags flags(bits);
      ASSERT_EQ(numbersOf(connection, test::auditCall(flags)), expectedAnswer(entries, flags, nullptr)) << flags;
      ASSERT_EQ(numbersOf(connection, test::auditCall(flags, "True", march.from, march.to)),
                expectedAnswer(entries, flags, &march))
          << flags;
    }
  }
  /// Every category alone, and all of them.
  void expectEachCategory(Connection& connection, const std::vector<AuditEntry>& entries) {
    for (std::size_t category = 0; category <= categoryCount; ++category) {
      const Flags flags = category < categoryCount ? Flags().set(category) : test::allFlags();
      EXPECT_EQ(numbersOf(connection, test::auditCall(flags)), expectedAnswer(entries, flags, nullptr)) << flags;
      EXPECT_EQ(numbersOf(connection, test::auditCall(flags, "True", march.from, march.to)),
                expectedAnswer(entries, flags, &march))
          << flags;
    }
  }
  std::unique_ptr<Connection> open() { return openEmbedded(folder_.path(), "D"); }

  test::TemporaryFolder folder_;
};

TEST_F(QueryAuditsAnswer, theRowsTellEveryCategoryApart) {
  const auto entries = nastyRows(500);
  for (std::size_t category = 0; category < categoryCount; ++category) {
    const auto count = [&](const Range* range) {
      return std::count_if(entries.begin(), entries.end(),
                           [&](const AuditEntry& entry) { return belongs(entry, category, range); });
    };
    EXPECT_GT(count(&march), 0) << category;
    EXPECT_GT(count(nullptr), count(&march)) << category;
  }
}

TEST_F(QueryAuditsAnswer, everyCombinationOfFlagsWithAndWithoutDates) {
  const auto entries = nastyRows(500);
  test::writeAuditDatabase(folder_ / "D.db", entries);
  expectEveryCombination(*open(), entries);
}

TEST_F(QueryAuditsAnswer, withoutIndexesAndWithOtherColumnTypes) {
  const auto entries = nastyRows(500);
  {
    test::DatabaseWriter writer(folder_ / "D.db");
    writer.run(
        "CREATE TABLE korvel_audit_trails (Nr INT, DateTime, ProjectGUID BLOB, DatabaseName, ApplicationName, "
        "TableName, "
        "FieldName, EventType BLOB, EventItem, OldValue, NewValue, PCName, OSUser, AppUser, UserName, "
        "AuditType VARCHAR(2), Comments, T1, Extra TEXT DEFAULT 'x')");
    writer.insert(entries);
  }
  expectEachCategory(*open(), entries);
}

TEST_F(QueryAuditsAnswer, onATableWithoutRowNumbers) {
  const auto entries = nastyRows(500);
  {
    test::DatabaseWriter writer(folder_ / "D.db");
    std::string schema = auditTableSchema();
    schema.insert(schema.rfind(')') + 1, " WITHOUT ROWID");
    writer.run(schema);
    writer.insert(entries);
    writer.run(auditIndexes());
  }
  expectEachCategory(*open(), entries);
}

TEST_F(QueryAuditsAnswer, onAView) {
  const auto entries = nastyRows(500);
  {
    test::DatabaseWriter writer(folder_ / "D.db");
    writer.run(auditTableSchema());
    writer.insert(entries);
    writer.run("ALTER TABLE Korvel_Audit_Trails RENAME TO archive");
    writer.run("CREATE VIEW Korvel_Audit_Trails AS SELECT * FROM archive");
  }
  expectEachCategory(*open(), entries);
}

TEST_F(QueryAuditsAnswer, withStatisticsOfTheTable) {
  const auto entries = nastyRows(1000);
  test::writeAuditDatabase(folder_ / "D.db", entries);
  test::DatabaseWriter(folder_ / "D.db").run("ANALYZE");
  expectEachCategory(*open(), entries);
}

TEST_F(QueryAuditsAnswer, flagsAreSetOnlyByTrueInAnyCase) {
  test::writeAuditDatabase(folder_ / "D.db", {{1, "2004-03-07", "UA", "E", "CS"}});
  const auto connection = open();
  const auto results = [&](const std::string& flag) {
    return test::resultsOf(*connection, "QueryAudits '" + flag + "','','','','','','','','','','','',''").size();
  };
  for (const char* flag : {"True", "true", "TRUE", "True  ", "True      x", "True       x"})
    EXPECT_EQ(results(flag), 1U) << flag;
  for (const char* flag : {"", "False", "1", "yes", " True", "Truex", "True.", "True     x"})
    EXPECT_EQ(results(flag), 0U) << flag;
}

TEST_F(QueryAuditsAnswer, datesCountOnlyWithTheirFlag) {
  test::writeAuditDatabase(folder_ / "D.db", {{1, "2004-03-07", "UA", "E", "CS"}});
  const auto connection = open();
  const Flags flags = test::onlyFlag("KorvelExplorer");
  for (const char* dateFlag : {"False", "", "1", "Yes"})
    EXPECT_EQ(numbersOf(*connection, test::auditCall(flags, dateFlag, "nonsense", "2004-99-99")), "1 /") << dateFlag;
  for (const char* dateFlag : {"True", "TRUE "})
    EXPECT_EQ(numbersOf(*connection, test::auditCall(flags, dateFlag, "2005-01-01", "2005-01-02")), "/") << dateFlag;
  EXPECT_EQ(test::errorOfText(*connection, test::auditCall(flags, "True", "False", "False"))->number(), 241);
  EXPECT_EQ(test::errorOfText(*connection, test::auditCall(flags, "True", "2004-02-30", "2004-03-01"))->number(), 242);
  EXPECT_EQ(numbersOf(*connection, test::auditCall({}, "True", "False", "False")), "")
      << "nothing asked, nothing converted";
}

TEST_F(QueryAuditsAnswer, everySetEndsAtFiveThousandRows) {
  std::vector<AuditEntry> entries;
  for (int number = 1; number <= 12000; ++number)
    entries.push_back({number, number % 2 == 0 ? "2004-03-08 10:00:00.000" : "2004-04-08 10:00:00.000",
                       number % 4 < 2 ? "vel_AlgText" : "MSRT", "CHECK_IN", number <= 5001 + 5000 ? "CS" : "DC"});
  test::writeAuditDatabase(folder_ / "D.db", entries);
  const auto connection = open();
  expectEachCategory(*connection, entries);
  const Flags nine = test::allFlags().reset(9);
  EXPECT_EQ(numbersOf(*connection, test::auditCall(nine)), expectedAnswer(entries, nine, nullptr));
  EXPECT_EQ(test::resultsOf(*connection, test::auditCall(nine)).at(0).rows.size(), 5000U);
  EXPECT_EQ(test::resultsOf(*connection, test::auditCall(test::allFlags())).at(0).rows.size(), 5000U);
  EXPECT_EQ(test::resultsOf(*connection, "SELECT Nr FROM Korvel_Audit_Trails").at(0).rows.size(), 12000U)
      << "a custom query has no limit";
}

TEST_F(QueryAuditsAnswer, rowsComeWhole) {
  test::writeAuditDatabase(folder_ / "D.db", {{7, "2004-03-07 13:45:59.123", "UATable", "CHANGE", "cs "}});
  EXPECT_EQ(test::answerText(*open(), test::auditCall(test::onlyFlag("UAcs"))),
            "Nr|DateTime|ProjectGUID|DatabaseName|ApplicationName|TableName|FieldName|EventType|EventItem|OldValue|"
            "NewValue|PCName|"
            "OSUser|AppUser|UserName|AuditType|Comments|T1\n"
            "7|2004-03-07 13:45:59.123|guid|plant|editor|UATable|field|CHANGE|item|old||PC01|os|app|user|cs |NULL|1\n");
}

}  // namespace
}  // namespace korvel::db
