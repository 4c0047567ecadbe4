#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_calls.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using test::AuditEntry;
using test::Flags;
using Text = std::optional<std::string>;

// ---- What QueryAudits means, said once more and in another way: no table of conditions, no SQL. ----

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string trimmedRight(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

bool is(const Text& value, const std::string& expected) {
  if (!value) return false;
  const std::string text = trimmedRight(*value);
  return std::equal(text.begin(), text.end(), expected.begin(), expected.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

/// `pattern` is a beginning, "_" in it any one character, of however many bytes.
bool like(const Text& value, const std::string& pattern) {
  if (!value) return false;
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  std::size_t at = 0;
  for (const char wanted : pattern) {
    if (at >= value->size()) return false;
    if (wanted != '_' && lower(wanted) != lower((*value)[at])) return false;
    ++at;
    while (wanted == '_' && at < value->size() && isContinuation((*value)[at])) ++at;
  }
  return true;
}

struct Range {
  std::string from;
  std::string to;
  bool contains(const AuditEntry& entry) const {
    if (!entry.dateTime) return false;
    std::string moment = *entry.dateTime;
    std::replace(moment.begin(), moment.end(), 'T', ' ');
    const std::string midnight = "0000-00-00 00:00:00.000";
    if (moment.size() < midnight.size()) moment += midnight.substr(moment.size());
    return moment >= from && moment <= to;
  }
};

bool belongs(const AuditEntry& entry, std::size_t category, const Range* range) {
  const bool inTime = range == nullptr || range->contains(entry);
  switch (category) {
    case 0:
      return is(entry.auditType, "CS") && inTime;
    case 1:
      return (is(entry.auditType, "CS") && like(entry.tableName, "vel_Alg")) ||
             (is(entry.auditType, "CS") && like(entry.tableName, "MS") && inTime);
    case 2:
      return like(entry.tableName, "PDE") && inTime;
    case 3:
      return is(entry.auditType, "CS") && like(entry.tableName, "UA") && inTime;
    case 4:
      return is(entry.auditType, "OA") && inTime;
    case 5:
      return is(entry.auditType, "RT") && like(entry.tableName, "UA") && inTime;
    case 6:
      return is(entry.auditType, "DC") && is(entry.eventType, "CHECK_IN") && inTime;
    case 7:
      return is(entry.auditType, "DC") && is(entry.eventType, "CHECK_OUT") && inTime;
    case 8:
      return is(entry.auditType, "DC") && is(entry.eventType, "ROLLBACK") && inTime;
    default:
      return is(entry.auditType, "DC") && is(entry.eventType, "RESTORE") && inTime;
  }
}

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

// ---- Rows with every case that a comparison can get wrong. ----

std::vector<AuditEntry> nastyRows(int count) {
  const std::vector<Text> types = {"CS", "cs", "Cs ", "CS   ", " CS", "CSX", "C", "RT", "rt ",        "OA",
                                   "oA", "DC", "dc",  "Dc  ",  "AU",  "XX",  "",  " ",  std::nullopt, "CS\t"};
  const std::vector<Text> tables = {
      "vel_AlgText", "VEL_ALGText", "velXAlgText", "velüAlgText", "vel_Al", "vel_Alg", "xvel_Alg",   "vel__Alg", "MSRT",
      "ms",          "mS ",         "M",           " MS",         "PDETag", "pde",     "PD",         "xPDE",     "PDE%",
      "UATable",     "ua",          "U",           "U_A",         "uA  ",   "",        std::nullopt, "Picture"};
  const std::vector<Text> events = {"CHECK_IN",  "check_in ", "CHECKXIN",    "CHECK_IN2", "CHECK_OUT",
                                    "Check_Out", "ROLLBACK",  "rollback   ", "RESTORE",   "restore",
                                    "restored",  "",          std::nullopt};
  const std::vector<Text> times = {"2004-03-06 23:59:59.999",
                                   "2004-03-07 00:00:00.000",
                                   "2004-03-07 00:00:00",
                                   "2004-03-07",
                                   "2004-03-07T00:00:00",
                                   "2004-03-08 12:00:00.000",
                                   "2004-03-09 23:59:59.999",
                                   "2004-03-09 23:59:59",
                                   "2004-03-10 00:00:00.000",
                                   "2004-03-10",
                                   std::nullopt,
                                   "1999-12-31 23:59:59.999"};
  std::mt19937 random(20040307);  // NOLINT: the same rows in every run
  const auto any = [&](const std::vector<Text>& values) { return values[random() % values.size()]; };
  std::vector<AuditEntry> entries;
  for (int number = 1; number <= count; ++number)
    entries.push_back({number * 3, any(times), any(tables), any(events), any(types)});
  return entries;
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
