#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "base/atomic_file.h"
#include "cli/built_in_trail.h"
#include "cli/messages.h"
#include "db/connection_string.h"
#include "evidence/sha256.h"
#include "tests/db/audit_database.h"
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

using test::ToolRun;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

/// A small installation with its list.
class SelftestCommand : public testing::Test {
 protected:
  SelftestCommand() {
    std::string sums;
    for (const char* name : {"bin/korvel-audit", "share/korvel-audit-viewer/QueryAudits.sql"}) {
      std::filesystem::create_directories((prefix / name).parent_path());
      writeFileAtomically(prefix / name, name);
      sums += hexText(evidence::Sha256::of(name)) + "  " + name + "\n";
    }
    writeFileAtomically(list, sums);
  }

  ToolRun run(std::vector<std::string> more = {}) const {
    std::vector<std::string> arguments = {"selftest", "--list", list.string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return test::runTool(arguments);
  }
  /// Result and what was found of one row of the report.
  static std::pair<std::string, std::string> rowOf(const ToolRun& tested, const std::string& check,
                                                   const std::string& name) {
    for (const auto& row : nlohmann::json::parse(tested.out))
      if (row["Check"] == check && row["Name"] == name) return {row["Result"], row["Found"]};
    return {"no such row", ""};
  }

  test::TemporaryFolder folder;
  std::filesystem::path prefix = folder / "prefix";
  std::filesystem::path list = prefix / "share" / "korvel-audit-viewer" / "checksums.sha256";
  std::string query = "all audits of the built-in trail";
};

TEST_F(SelftestCommand, AnInstallationAsItWasDeliveredPasses) {
  const ToolRun tested = run({"--format", "json"});
  EXPECT_EQ(tested.status, exitDone) << tested.out;
  EXPECT_EQ(tested.err, "korvel-audit: PASSED: 2 files and the known query are as they must be\n");
  EXPECT_EQ(rowOf(tested, "file", "bin/korvel-audit").first, "ok");
  EXPECT_THAT(rowOf(tested, "query", query), Pair("ok", builtInDigest));
  for (const char* name : {"korvel-audit", "Qt", "ODBC driver manager"})
    EXPECT_THAT(rowOf(tested, "version", name).second, HasSubstr(".")) << name;
  EXPECT_THAT(rowOf(tested, "version", "engine of the query").second, StartsWith("SQLite 3."));
}

TEST_F(SelftestCommand, TheTableSaysTheSame) {
  const ToolRun tested = run();
  EXPECT_EQ(tested.status, exitDone);
  EXPECT_THAT(tested.out, StartsWith("Check "));
  EXPECT_THAT(tested.out, HasSubstr("\nfile     bin/korvel-audit "));
  EXPECT_EQ(run({"--quiet"}).err, "");
}

TEST_F(SelftestCommand, AChangedFileIsNamed) {
  writeFileAtomically(prefix / "bin" / "korvel-audit", "bin/korvel-audiT");
  const ToolRun tested = run({"--format", "json"});
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_EQ(tested.err, "korvel-audit: FAILED: 1 check; 2 files compared\n");
  EXPECT_THAT(rowOf(tested, "file", "bin/korvel-audit"),
              Pair("changed", hexText(evidence::Sha256::of("bin/korvel-audiT"))));
  EXPECT_EQ(rowOf(tested, "file", "share/korvel-audit-viewer/QueryAudits.sql").first, "ok");
}

TEST_F(SelftestCommand, AMissingFileIsNamed) {
  std::filesystem::remove(prefix / "bin" / "korvel-audit");
  const ToolRun tested = run({"--format", "json"});
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_THAT(rowOf(tested, "file", "bin/korvel-audit"), Pair("missing", ""));
}

TEST_F(SelftestCommand, AFolderInTheFilesPlaceIsNoFile) {
  std::filesystem::remove(prefix / "bin" / "korvel-audit");
  std::filesystem::create_directory(prefix / "bin" / "korvel-audit");
  const ToolRun tested = run({"--format", "json"});
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_THAT(rowOf(tested, "file", "bin/korvel-audit"), Pair("unreadable", "it is no file"));
}

TEST_F(SelftestCommand, WithoutAListNothingIsKnownOfTheFiles) {
  // The program that runs the tests has none.
  const ToolRun tested = test::runTool({"selftest", "--format", "json"});
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_EQ(tested.err, "korvel-audit: FAILED: 1 check; 0 files compared\n");
  const auto [result, found] = rowOf(tested, "list", "checksums.sha256");
  EXPECT_EQ(result, "no list");
  EXPECT_THAT(found, HasSubstr("korvel-audit-viewer and "));
  EXPECT_EQ(rowOf(tested, "query", query).first, "ok");
}

TEST_F(SelftestCommand, WhatIsNoListDoesNotPass) {
  for (const char* text : {"", "these are no sums\n"}) {
    writeFileAtomically(list, text);
    const ToolRun tested = run({"--format", "json"});
    EXPECT_EQ(tested.status, exitIncomplete) << text;
    EXPECT_EQ(rowOf(tested, "list", list.string()).first, "no list") << text;
  }
  std::filesystem::remove(list);
  EXPECT_EQ(run().status, exitIncomplete);
}

TEST_F(SelftestCommand, AFolderForTemporaryFilesThatCannotBeWrittenToDoesNotPass) {
  // What is no folder takes no files, whoever asks.
  writeFileAtomically(folder / "file", "");
  const auto place = (folder / "file").string();
  const test::EnvironmentVariable posix("TMPDIR", place);
  const test::EnvironmentVariable first("TMP", place);
  const test::EnvironmentVariable second("TEMP", place);
  const ToolRun tested = run({"--format", "json"});
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_EQ(rowOf(tested, "query", query).first, "failed");
  EXPECT_THAT(rowOf(tested, "query", query).second, HasSubstr("older"));
  EXPECT_EQ(rowOf(tested, "file", "bin/korvel-audit").first, "ok");
}

TEST_F(SelftestCommand, NothingIsLeftInTheFolderForTemporaryFiles) {
  std::filesystem::create_directory(folder / "empty");
  const auto place = (folder / "empty").string();
  const test::EnvironmentVariable posix("TMPDIR", place);
  const test::EnvironmentVariable first("TMP", place);
  const test::EnvironmentVariable second("TEMP", place);
  EXPECT_EQ(run().status, exitDone);
  EXPECT_TRUE(std::filesystem::is_empty(folder / "empty"));
}

TEST_F(SelftestCommand, AnotherAnswerOfTheKnownQueryDoesNotPass) {
  // The engine gives one value differently.
  const query::Connector lying = [](std::string_view connectionString, const std::stop_token& stop) {
    const std::filesystem::path place = db::parseConnectionString(connectionString).server;
    test::DatabaseWriter(place / "Korvel_Audit.db").run("UPDATE Korvel_Audit_Trails SET NewValue = 'x' WHERE Nr = 7");
    return db::openConnection(connectionString, stop);
  };
  const ToolRun tested = test::runTool({"selftest", "--list", list.string(), "--format", "json"}, lying);
  EXPECT_EQ(tested.status, exitIncomplete);
  EXPECT_EQ(rowOf(tested, "query", query).first, "another answer");
}

}  // namespace
}  // namespace korvel::cli
