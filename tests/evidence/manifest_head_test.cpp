#include "evidence/manifest_head.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace korvel::evidence {
namespace {

using output::PageHead;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string grouped(std::size_t number) {
  std::string text = std::to_string(number);
  if (text.size() > 3) text.insert(text.size() - 3, ",");
  return text;
}

struct ManifestHead : testing::Test {
  ManifestHead() {
    manifest.program = "korvel-audit";
    manifest.programVersion = "1.2.3";
    manifest.user = "anna";
    manifest.computer = "PC7";
    manifest.source = {"PLANT01", "Korvel_Audit_MU", "Engine 15.0", "PLANT\\reader"};
    manifest.question.categories = {"Configuration / Alarms", "Configuration / Tag Logging", "Runtime / User Archives"};
    manifest.question.text = "QueryAudits 'False'";
    manifest.lists = {{"ALL Audits", 5120}, {"Configuration", 120}};
    manifest.isComplete = true;
    part.caption = "Configuration";
    part.rows = part.ofRows = 120;
    part.printed = "2026-11-22T16:05:03+01:00";
  }
  [[nodiscard]] PageHead head(const std::string& language = "0") const {
    return manifestHead(manifest, part, settings::LanguageOffset(language), grouped);
  }
  /// The text of a fact; "-" where there is none.
  [[nodiscard]] std::string fact(const std::string& name, const std::string& language = "0") const {
    const PageHead made = head(language);
    const auto found =
        std::find_if(made.facts.begin(), made.facts.end(), [&](const auto& each) { return each.name == name; });
    return found == made.facts.end() ? "-" : found->text;
  }

  Manifest manifest;
  PrintedPart part;
};

TEST_F(ManifestHead, NamesTheTrailAndWhatWasAskedInWords) {
  EXPECT_EQ(fact("Audit trail"), "PLANT01, Korvel_Audit_MU · Engine 15.0 · login PLANT\\reader");
  EXPECT_EQ(fact("Asked for"), "Configuration: Alarms, Tag Logging; Runtime: User Archives");
  EXPECT_THAT(fact("Date range"), StartsWith("all dates · "));
  EXPECT_EQ(fact("Query (SQL)"), "-");
  manifest.question.from = "2004-03-07 00:00:00.000";
  manifest.question.to = "2004-03-09 23:59:59.999";
  EXPECT_EQ(fact("Date range"),
            "2004-03-07 to 2004-03-09, both days whole · times are the plant's wall-clock time as stored, without a "
            "time zone");
  EXPECT_EQ(head().source, "PLANT01, Korvel_Audit_MU · 2004-03-07 to 2004-03-09, both days whole");
  manifest.question.categories.assign(10, "Runtime / User Archives");
  EXPECT_EQ(fact("Asked for"), "all ten categories, and the audit system's own entries");
}

TEST_F(ManifestHead, OfAQueryOfTheUsersOwnHasItsTextAndTheSumOfAllOfIt) {
  manifest.question = {};
  manifest.isComplete.reset();
  manifest.question.text = "select *\r\n  from  Korvel_Audit_Trails\n";
  EXPECT_EQ(fact("Query (SQL)"), "select * from Korvel_Audit_Trails");
  EXPECT_EQ(fact("SHA-256 of the query"), hexText(Sha256::of("select *\r\n  from  Korvel_Audit_Trails\n")));
  EXPECT_EQ(fact("Date range"), "-");
  EXPECT_THAT(fact("Times"), HasSubstr("wall-clock"));
  EXPECT_EQ(fact("Completeness"), "-") << "nobody knows the limits of such a query";
  EXPECT_EQ(head().warning, "");
  EXPECT_EQ(head().source, "PLANT01, Korvel_Audit_MU");
  // A long text is cut behind a whole character; its sum is that of all of it.
  manifest.question.text.clear();
  for (int i = 0; i < 100'000; ++i) manifest.question.text += "ä";
  EXPECT_THAT(fact("Query (SQL)"), EndsWith("ä…"));
  EXPECT_LT(fact("Query (SQL)").size(), 2000U);
  EXPECT_EQ(fact("SHA-256 of the query"), hexText(Sha256::of(manifest.question.text)));
}

TEST_F(ManifestHead, SaysPlainlyThatRowsAreMissing) {
  EXPECT_EQ(fact("Completeness"), "complete: the limit of 5,000 records was not reached");
  EXPECT_THAT(head().about.description, StartsWith("complete: the limit of 5,000"));
  manifest.isComplete = false;
  manifest.limitReached = {"Configuration / Alarms", "Runtime / User Archives"};
  const std::string cut =
      "INCOMPLETE: the limit of 5,000 was reached in: Configuration: Alarms; Runtime: User Archives";
  EXPECT_EQ(head().warning, cut);
  EXPECT_THAT(head().about.description, StartsWith(cut));
  EXPECT_EQ(fact("Completeness"), "-");
  EXPECT_THAT(head("10000").warning, StartsWith("UNVOLLSTÄNDIG: "));
  manifest.question.beyondLimit = true;
  EXPECT_EQ(head().warning, "INCOMPLETE: not all records beyond the limit of 5,000 could be loaded");
  manifest.isComplete = true;
  manifest.limitReached.clear();
  EXPECT_EQ(head().warning, "");
  EXPECT_EQ(fact("Completeness"), "complete: completed beyond the limit of 5,000 records (\"Load all\")");
}

TEST_F(ManifestHead, TellsWhatWasFilteredSortedCountedAndLeftOut) {
  EXPECT_EQ(fact("Filters"), "none");
  EXPECT_EQ(fact("Sorted by"), "as answered");
  EXPECT_EQ(fact("Columns left out"), "-");
  EXPECT_EQ(fact("Records"), "120 on these pages · in the answer: ALL Audits 5,120, Configuration 120");
  manifest.question.filters = {"Event = \"UPDATE\"", "contains \"TIC\""};
  manifest.question.sortedBy = "Date Time, descending";
  part.rows = 7;
  part.columnsLeftOut = {"Comments", "Summer Time"};
  part.notes = {"one", "two"};
  part.remark = "a remark";
  EXPECT_EQ(fact("Filters"), "Event = \"UPDATE\"; contains \"TIC\"");
  EXPECT_EQ(fact("Sorted by"), "Date Time, descending");
  EXPECT_EQ(fact("Columns left out"), "Comments, Summer Time");
  EXPECT_THAT(fact("Records"), StartsWith("7 of 120 on these pages · "));
  EXPECT_EQ(fact("Notes"), "one · two");
  part.isCounted = true;
  EXPECT_THAT(fact("Records"), StartsWith("numbers of records in 7 rows · "));
  part.isCounted = false;
  EXPECT_EQ(head().remark, "a remark");
  for (const char* said : {"Event = \"UPDATE\"", "Comments, Summer Time", "7 of 120", "a remark"})
    EXPECT_THAT(head().about.description, HasSubstr(said));
}

TEST_F(ManifestHead, SaysWhoPrintedWhenAndWithWhat) {
  EXPECT_EQ(head().origin, "Printed 2026-11-22 16:05:03 +01:00 · User: anna · Computer: PC7 · korvel-audit 1.2.3");
  const output::DocumentAbout about = head().about;
  EXPECT_EQ(about.title, "KorvelAudit Report: Configuration, PLANT01, Korvel_Audit_MU");
  EXPECT_EQ(about.author, "anna");
  EXPECT_EQ(about.creator, "korvel-audit 1.2.3");
  EXPECT_EQ(about.created, "2026-11-22T16:05:03+01:00");
  EXPECT_EQ(about.language, "en");
  part.printed = "2026-11-22T11:05:03-05:00";
  manifest.user.clear();
  manifest.computer.clear();
  EXPECT_EQ(head().origin, "Printed 2026-11-22 11:05:03 -05:00 · korvel-audit 1.2.3");
}

TEST_F(ManifestHead, IsInFiveLanguages) {
  const std::string languages[] = {"en", "de", "fr", "es", "it"};
  const std::string filters[] = {"Filters", "Filter", "Filtres", "Filtros", "Filtri"};
  for (std::size_t i = 0; i < 5; ++i) {
    const std::string offset = std::to_string(i * 10000);
    EXPECT_EQ(head(offset).about.language, languages[i]);
    EXPECT_THAT(fact(filters[i], offset), Not("-"));
  }
}

}  // namespace
}  // namespace korvel::evidence
