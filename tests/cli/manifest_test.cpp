// Outputs with a manifest, and their verification.

#include <gmock/gmock.h>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "evidence/manifest.h"
#include "tests/cli/query_command_fixture.h"

namespace korvel::cli {
namespace {

using evidence::Sha256;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ManifestOption : public QueryCommand {
 protected:
  test::ToolRun write(std::vector<std::string> options) {
    options.insert(options.end(), {"--output", utf8FromPath(file), "--manifest"});
    return test::runTool(options, server.connector());
  }
  json manifest() { return json::parse(readFile(utf8Of(".manifest.json"))); }
  std::filesystem::path utf8Of(const std::string& ending) { return pathFromUtf8(utf8FromPath(file) + ending); }
  test::ToolRun verify() { return test::runTool({"verify", utf8FromPath(file)}); }
  std::size_t fileCount() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) ++count;
    return count;
  }

  std::filesystem::path file = folder / "rows.csv";
};

TEST_F(ManifestOption, SaysWhatWasAskedOfWhom) {
  ASSERT_EQ(
      write({"query", "--server", "AUDITSRV", "--database", "D", "--format", "csv", "--category", "Alarms", "--from",
             "2004-03-07", "--to", "2004-03-09", "--sort", "Entry ID", "--descending", "--where", "Audit Type=CS"})
          .status,
      0);
  const json told = manifest();
  EXPECT_EQ(told["source"]["server"], "AUDITSRV");
  EXPECT_EQ(told["source"]["database"], "D");
  EXPECT_THAT(told["question"]["categories"], ElementsAre("Configuration / Alarms"));
  EXPECT_EQ(told["question"]["from"], "2004-03-07 00:00:00.000");
  EXPECT_EQ(told["question"]["to"], "2004-03-09 23:59:59.999");
  EXPECT_THAT(std::string(told["question"]["text"]), testing::StartsWith("QueryAudits 'False','True','False'"));
  EXPECT_THAT(told["question"]["filters"], ElementsAre("Audit Type = \"CS\""));
  EXPECT_EQ(told["question"]["list"], "ALL Audits");
  EXPECT_EQ(told["question"]["sortedBy"], "Entry ID, descending");
  EXPECT_EQ(told["lists"][0]["rows"], 4);
  EXPECT_EQ(told["rows"]["count"], 2);
  EXPECT_EQ(told["output"]["format"], "csv");
  EXPECT_EQ(told["output"]["sha256"], hexText(Sha256::of(readFile(file))));
  EXPECT_EQ(told["output"]["bytes"], readFile(file).size());
  EXPECT_EQ(told["complete"], true);
  EXPECT_FALSE(told.contains("limitReached"));
  EXPECT_TRUE(told.contains("written"));
  const test::ToolRun verified = verify();
  EXPECT_EQ(verified.status, 0);
  EXPECT_EQ(verified.out, utf8FromPath(file) + ": unchanged\n");
}

TEST_F(ManifestOption, SaysThatAnAnswerReachedTheLimit) {
  for (int i = 0; i < 5000; ++i) server.answer[0].rows.push_back(server.answer[0].rows[0]);
  server.answer[0].rows.resize(5000);
  ASSERT_EQ(write({"query", "--format", "csv"}).status, 0);
  EXPECT_EQ(manifest()["complete"], false);
  EXPECT_THAT(manifest()["limitReached"], ElementsAre("ALL Audits"));
  EXPECT_THAT(std::string(manifest()["notes"][0]), HasSubstr("5000-row limit"));
}

TEST_F(ManifestOption, RepeatsTheNotesOnWhatAFormatCannotCarry) {
  server.answer[0].rows[0][3] = "\xFF";
  const test::ToolRun done = write({"query", "--format", "json"});
  ASSERT_EQ(done.status, 0);
  EXPECT_THAT(done.err, HasSubstr("values with bytes that are no text"));
  EXPECT_THAT(std::string(manifest()["notes"][0]), testing::StartsWith("values with bytes that are no text"));
}

/// Whatever the format, and whether the answer was written while it arrived.
TEST_F(ManifestOption, HasTheSameDigestOfTheSameRows) {
  std::string digest;
  for (const char* const format : {"csv", "json", "xlsx", "text", "exchange", "table", "html"})
    for (const bool standard : {true, false}) {
      std::vector<std::string> options{"sql", "select", "--format", format};
      if (standard) options = {"query", "--format", format};
      ASSERT_EQ(write(options).status, 0) << format;
      const std::string said = manifest()["rows"]["digest"];
      if (digest.empty()) digest = said;
      EXPECT_EQ(said, digest) << format;
      EXPECT_EQ(manifest()["rows"]["count"], 4) << format;
      EXPECT_EQ(verify().status, 0) << format;
    }
  EXPECT_FALSE(manifest().contains("complete")) << "nobody knows the limits of such a query";
  EXPECT_EQ(manifest()["question"]["text"], "select");
  EXPECT_EQ(manifest()["question"]["textSha256"], hexText(Sha256::of("select")));
}

TEST_F(ManifestOption, StandsBesideAFileOnly) {
  for (const char* const command : {"query", "sql"}) {
    std::vector<std::string> options{command, "--manifest"};
    if (options[0] == "sql") options.emplace_back("select");
    const test::ToolRun refused = test::runTool(options, server.connector());
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("name one with --output"));
    options.insert(options.end(), {"--count-by", "1"});
    EXPECT_THAT(write(options).err, HasSubstr("excludes"));
  }
  EXPECT_TRUE(server.executed.empty());
}

TEST_F(ManifestOption, AppearsWithItsOutputOrNotAtAll) {
  server.answer[0].rows.clear();
  EXPECT_EQ(write({"query", "--format", "csv"}).status, 1);
  EXPECT_EQ(write({"sql", "select", "--format", "csv"}).status, 1);
  EXPECT_EQ(fileCount(), 0U);
  std::filesystem::create_directory(utf8Of(".sha256"));
  const test::ToolRun refused = write({"query", "--format", "csv"});
  EXPECT_EQ(refused.status, 4);
  EXPECT_THAT(refused.err, HasSubstr("rows.csv.sha256"));
  EXPECT_EQ(fileCount(), 1U);
}

TEST_F(ManifestOption, ChangesAreNamedByVerify) {
  ASSERT_EQ(write({"query", "--format", "csv"}).status, 0);
  std::string bytes = readFile(file);
  bytes.replace(bytes.find("\n100,"), 5, "\n101,");
  writeFileAtomically(file, bytes);
  const test::ToolRun changed = test::runTool({"verify", utf8FromPath(folder.path())});
  EXPECT_EQ(changed.status, 5);
  EXPECT_THAT(changed.out, HasSubstr(": row 4 was changed\n"));
  EXPECT_THAT(changed.err, IsEmpty());
}

/// A workbook holds numbers and dates, not the texts that are stored; its rows are named all the same.
TEST_F(ManifestOption, ChangesOfAWorkbookAreNamedByVerify) {
  server.answer[0].fields[0].kind = db::ColumnKind::number;
  server.answer[0].fields[1].kind = db::ColumnKind::dateTime;
  server.answer[0].rows[0][10] = std::nullopt;
  for (const char* const command : {"query", "sql"}) {
    std::vector<std::string> options{command, "--format", "xlsx"};
    if (options[0] == "sql") options.emplace_back("select");
    ASSERT_EQ(write(options).status, 0);
    EXPECT_EQ(manifest()["rows"]["cells"].size(), 4U);
    EXPECT_EQ(verify().status, 0);
    const std::string recorded = readFile(utf8Of(".manifest.json"));
    const std::string sums = readFile(utf8Of(".sha256"));
    server.answer[0].rows[2][10] = "changed";
    ASSERT_EQ(write(options).status, 0);
    writeFileAtomically(utf8Of(".manifest.json"), recorded);
    writeFileAtomically(utf8Of(".sha256"), sums);
    const test::ToolRun changed = verify();
    EXPECT_EQ(changed.status, 5);
    EXPECT_THAT(changed.out, HasSubstr(options[0] == "sql" ? ": row 3 was changed\n" : ": row 4 was changed\n"));
    EXPECT_THAT(changed.out, testing::Not(HasSubstr("row 1 ")));
    server.answer[0].rows[2][10] = "as before";
  }
}

TEST_F(ManifestOption, SaysWhichTimesTheClockShowedTwice) {
  const auto rowAt = [](const char* number, const char* stamp, const char* summerTime) {
    auto row = test::auditRow(number, "CS");
    row[1] = stamp;
    row[17] = summerTime;
    return row;
  };
  server.answer[0].rows = {rowAt("1", "2003-10-26 02:10:00.000", "1"), rowAt("2", "2003-10-26 02:50:00.000", "1"),
                           rowAt("3", "2003-10-26 02:20:00.000", "0"), rowAt("4", "2003-10-26 03:20:00.000", "0")};
  for (const char* const command : {"query", "sql"}) {
    std::vector<std::string> options{command, "--format", "json"};
    if (options[0] == "sql") options.emplace_back("select");
    ASSERT_EQ(write(options).status, 0);
    const json stamps = manifest()["rows"]["stamps"];
    EXPECT_EQ(stamps["clock"], "local time of the plant; its offset from UTC is not recorded");
    EXPECT_EQ(stamps["shownTwice"],
              json::array({{{"from", "2003-10-26 02:20:00.000"}, {"to", "2003-10-26 02:50:00.000"}}}));
  }
}

TEST_F(ManifestOption, VerifySaysWhereThereIsNothing) {
  const test::ToolRun missing = verify();
  EXPECT_EQ(missing.status, 5);
  EXPECT_THAT(missing.out, HasSubstr("there is no such file"));
  const test::ToolRun empty = test::runTool({"verify", utf8FromPath(folder.path())});
  EXPECT_EQ(empty.status, 5);
  EXPECT_THAT(empty.err, HasSubstr("there is no manifest in"));
  EXPECT_EQ(test::runTool({"verify"}).status, 2);
}

}  // namespace
}  // namespace korvel::cli
