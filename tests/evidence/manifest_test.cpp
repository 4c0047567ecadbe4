#include "evidence/manifest.h"

#include <gmock/gmock.h>

#include "base/error.h"

namespace korvel::evidence {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ManifestText, SaysWhatWasAskedAndWhatCame) {
  Manifest manifest;
  manifest.program = "korvel-audit";
  manifest.programVersion = "1.0.0";
  manifest.user = "Małgorzata";
  manifest.source = {"AUDITSRV", "Korvel_Audit_MU", "SQLite 3.40.1", ""};
  manifest.question = {{"Alarms"},   "2004-04-01",      "2004-04-30",     true,
                       "ALL Audits", "QueryAudits '0'", {"Event=UPDATE"}, "Entry ID"};
  manifest.lists = {{"ALL Audits", 12}};
  manifest.isComplete = false;
  manifest.limitReached = {"Configuration / Alarms"};
  manifest.notes = {"the limit was reached"};
  manifest.output = {"rows.csv", "csv", 1234, Sha256::of("file")};
  manifest.rows = {{"EntryID"}, Sha256::of("all"), {Sha256::of("1"), Sha256::of("2")}};
  const std::string text = manifestText(manifest);
  for (const char* const part :
       {R"("format": "korvel-audit-manifest")", R"("version": 1)", R"("program": "korvel-audit 1.0.0")",
        R"("user": "Małgorzata")", R"("server": "AUDITSRV")", R"("engine": "SQLite 3.40.1")", R"("from": "2004-04-01")",
        R"("beyondLimit": true)", R"("text": "QueryAudits '0'")", R"("sortedBy": "Entry ID")", R"("rows": 12)",
        R"("complete": false)", R"("limitReached": [)", R"("Configuration / Alarms")", R"("bytes": 1234)",
        R"("count": 2)"})
    EXPECT_THAT(text, HasSubstr(part));
  EXPECT_THAT(text, HasSubstr(hexText(Sha256::of("QueryAudits '0'"))));
  EXPECT_THAT(text, testing::Not(HasSubstr("login")));
  EXPECT_THAT(text, testing::Not(HasSubstr("snapshotOf")));
  manifest.source.snapshot = db::SnapshotOrigin{"PLANT", "D", "2026-11-22T16:05:03+01:00"};
  EXPECT_THAT(manifestText(manifest),
              testing::AllOf(HasSubstr(R"("snapshotOf": {)"), HasSubstr(R"("taken": "2026-11-22T16:05:03+01:00")")));
  const RecordedOutput recorded = readManifest(text);
  EXPECT_EQ(recorded.output.name, "rows.csv");
  EXPECT_EQ(recorded.output.format, "csv");
  EXPECT_EQ(recorded.output.bytes, 1234U);
  EXPECT_EQ(recorded.output.sha256, Sha256::of("file"));
  EXPECT_THAT(recorded.rows.columns, ElementsAre("EntryID"));
  EXPECT_EQ(recorded.rows.digest, Sha256::of("all"));
  EXPECT_THAT(recorded.rows.each, ElementsAre(Sha256::of("1"), Sha256::of("2")));
}

TEST(ManifestText, TakesBytesThatAreNoText) {
  Manifest manifest;
  manifest.source.server = "\xFF";
  manifest.output.name = "a";
  EXPECT_THAT(manifestText(manifest), HasSubstr(R"("server": "�")"));
}

TEST(Sums, AreReadAsTheyAreWritten) {
  const std::vector<NamedSum> sums{{Sha256::of("1"), "plain name.csv"}, {Sha256::of("2"), "back\\slash\nline\r"}};
  const std::string text = sumsText(sums);
  EXPECT_TRUE(text.starts_with(hexText(Sha256::of("1")) + "  plain name.csv\n\\"));
  const auto read = readSums(text);
  ASSERT_TRUE(read);
  ASSERT_EQ(read->size(), 2U);
  EXPECT_EQ(read->at(0).name, sums[0].name);
  EXPECT_EQ(read->at(1).name, sums[1].name);
  EXPECT_EQ(read->at(1).sha256, sums[1].sha256);
}

TEST(Sums, OfAnotherFormAreRefused) {
  const std::string digits = hexText(Sha256::of("1"));
  for (const std::string& text :
       {digits + "  name", digits + " *name\n", digits + "  \n", digits.substr(1) + "  name\n",
        "\\" + digits + "  a\\b\n", "\\" + digits + "  a\\", std::string("\n")})
    EXPECT_FALSE(readSums(text)) << text;
  EXPECT_TRUE(readSums("")->empty());
}

}  // namespace
}  // namespace korvel::evidence
