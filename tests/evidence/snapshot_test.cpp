#include "evidence/snapshot.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "db/embedded/embedded_connection.h"
#include "evidence/bag.h"
#include "evidence/manifest.h"
#include "evidence/proven_file.h"
#include "evidence/snapshot_reader.h"
#include "evidence/trail_comparison.h"
#include "evidence/verification.h"
#include "settings/string_table.h"
#include "tests/db/audit_database.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Rows until a number of them has come, then a failure.
class BreakingSink final : public db::ResultSink {
 public:
  BreakingSink(db::ResultSink& sink, std::int64_t& left) : sink_(sink), left_(left) {}
  void beginResult(std::span<const db::Field> fields) override { sink_.beginResult(fields); }
  bool row(std::span<const db::Cell> cells) override {
    if (left_-- <= 0) throw Error(20006, "the connection broke");
    return sink_.row(cells);
  }
  void endResult() override { sink_.endResult(); }
  bool shouldContinue() override { return sink_.shouldContinue(); }

 private:
  db::ResultSink& sink_;
  std::int64_t& left_;
};

/// A server whose connections break after some rows of the trail.
class BreakingConnection final : public db::Connection {
 public:
  BreakingConnection(std::unique_ptr<db::Connection> connection, std::int64_t& left)
      : connection_(std::move(connection)), left_(left) {}
  void execute(std::string_view text, db::ResultSink& sink) override { connection_->execute(text, sink); }
  void select(const db::AuditSelection& selection, db::ResultSink& sink) override {
    BreakingSink breaking(sink, left_);
    connection_->select(selection, selection.columns == db::AuditSelection::Columns::all ? breaking : sink);
  }
  [[nodiscard]] db::ServerIdentity identity() const override { return {"a product 1.0", "a login"}; }

 private:
  std::unique_ptr<db::Connection> connection_;
  std::int64_t& left_;
};

constexpr int rowCount = 2000;
constexpr std::int64_t unbroken = std::int64_t{1} << 40U;

class Snapshot : public testing::Test {
 protected:
  Snapshot() {
    std::vector<test::AuditEntry> entries;
    for (int i = 1; i <= rowCount; ++i)
      entries.push_back({i, "2004-03-07 00:00:00." + std::to_string(100 + i % 900), i % 7 == 0 ? "" : "UATable",
                         std::to_string(i), "CS"});
    test::writeAuditDatabase(trail, entries);
    order.source = {"a server", "D", "", ""};
    order.connectionString = "the string";
    order.folder = folder / "snapshot";
    order.program = "a program";
    order.programVersion = "1.2";
    order.connect = [this](std::string_view, const std::stop_token&) -> std::unique_ptr<db::Connection> {
      if (left <= 0) throw Error(20009, "no server");
      ++connections;
      return std::make_unique<BreakingConnection>(db::openEmbedded(folder.path(), "D"), left);
    };
  }

  void change(const std::string& sql) const { test::DatabaseWriter(trail).run(sql); }
  std::string failure() {
    try {
      (void)takeSnapshot(order);
    } catch (const Error& error) {
      return error.description();
    }
    return {};
  }
  /// How the snapshot and the trail differ.
  TrailComparison compared(const std::filesystem::path& file) {
    const auto facts = snapshotFactsOf(*openSnapshot(file));
    db::AuditSelection all;
    all.dates = db::AuditSelection::Dates::all;
    all.numbers.emplace();
    RowStream before([=](db::ResultSink& sink, const std::stop_token&) { openSnapshot(file)->select(all, sink); });
    RowStream now([=, this](db::ResultSink& sink, const std::stop_token&) {
      db::openEmbedded(folder.path(), "D")->select(all, sink);
    });
    return compareTrails(before, now, facts->last);
  }
  std::filesystem::path unfinished() const { return order.folder / "D.db.unfinished"; }
  static std::string textOf(const std::filesystem::path& database, const std::string& query) {
    struct Sink final : db::ResultSink {
      void beginResult(std::span<const db::Field>) override {}
      bool row(std::span<const db::Cell> cells) override {
        for (const db::Cell& cell : cells) text.append(cell.isNull ? "NULL" : std::string(cell.text)).append(" ");
        return true;
      }
      void endResult() override {}
      std::string text;
    } sink;
    openSnapshot(database)->execute(query, sink);
    return sink.text;
  }

  test::TemporaryFolder folder;
  std::filesystem::path trail = folder / "D.db";
  std::int64_t left = unbroken;
  std::atomic<int> connections = 0;
  SnapshotOrder order;
};

TEST_F(Snapshot, HoldsTheRowsAndSaysWhatTheyAre) {
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.file, order.folder / "D.db");
  EXPECT_EQ(taken.continuedAt, 0U);
  const auto facts = snapshotFactsOf(*openSnapshot(taken.file));
  ASSERT_TRUE(facts);
  EXPECT_EQ(facts->source, order.source);
  EXPECT_EQ(facts->rows, rowCount);
  EXPECT_EQ(facts->last, rowCount);
  EXPECT_EQ(facts->engine, "a product 1.0");
  EXPECT_EQ(facts->login, "a login");
  EXPECT_EQ(facts->program, "a program 1.2");
  EXPECT_EQ(facts->begun.size(), std::string("2026-11-22T16:05:03+01:00").size());
  const TrailComparison found = compared(taken.file);
  EXPECT_TRUE(found.isUnchanged());
  EXPECT_EQ(found.same, rowCount);
  EXPECT_FALSE(std::filesystem::exists(unfinished()));
}

TEST_F(Snapshot, IsAnEmbeddedDatabaseThatAnswersAsTheTrailDoes) {
  const std::filesystem::path file = takeSnapshot(order).file;
  const std::string call =
      "QueryAudits 'True','True','True','True','True','True','True','True','True','True','False'"
      ",'False','False'";
  EXPECT_EQ(textOf(file, call), textOf(trail, call));
  EXPECT_THAT(textOf(file, call), HasSubstr("UATable"));
  EXPECT_EQ(textOf(file, "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name LIKE 'Korvel%'"), "5 ");
}

TEST_F(Snapshot, SaysSoToWhoeverConnects) {
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_THAT(openSnapshot(taken.file)->identity().product,
              testing::AllOf(testing::StartsWith("SQLite "),
                             testing::EndsWith(", snapshot of D on a server, " + taken.facts.begun)));
  const auto origin = openSnapshot(taken.file)->identity().snapshot;
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->server, "a server");
  EXPECT_EQ(origin->database, "D");
  EXPECT_EQ(origin->taken, taken.facts.begun);
  EXPECT_THAT(openSnapshot(trail)->identity().product, Not(HasSubstr("snapshot")));
  EXPECT_FALSE(openSnapshot(trail)->identity().snapshot);
}

TEST_F(Snapshot, HasAManifestAndSumsThatVerifyAccepts) {
  const std::filesystem::path file = takeSnapshot(order).file;
  EXPECT_THAT(verifyOutput(file).findings, IsEmpty());
  const std::string manifest = readFile(manifestOf(file));
  EXPECT_THAT(manifest, HasSubstr("\"count\": 2000"));
  EXPECT_THAT(manifest, HasSubstr("\"login\": \"a login\""));
  EXPECT_THAT(manifest, HasSubstr("WHERE (Nr is null or Nr <= 2000) ORDER BY Nr"));
}

TEST_F(Snapshot, OfWhichARowWasChangedNamesIt) {
  const std::filesystem::path file = takeSnapshot(order).file;
  std::filesystem::permissions(file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
  test::DatabaseWriter(file).run("UPDATE Korvel_Audit_Trails SET EventType = 'x' WHERE Nr = 1234");
  EXPECT_THAT(verifyOutput(file).findings,
              ElementsAre(HasSubstr("SHA-256 is another one"), HasSubstr("row 1234 was changed")));
  test::DatabaseWriter(file).run("DELETE FROM Korvel_Audit_Trails WHERE Nr = 17");
  EXPECT_THAT(verifyOutput(file).findings, testing::Contains(HasSubstr("row 17 is missing")));
  // Changing the digests as well does not hide it.
  test::DatabaseWriter(file).run("UPDATE Korvel_Snapshot_Digests SET Digest = x'00' WHERE Place = 17");
  EXPECT_THAT(verifyOutput(file).findings, testing::Contains(HasSubstr("not those of the manifest")));
}

TEST_F(Snapshot, FilesAreReadOnly) {
  const std::filesystem::path file = takeSnapshot(order).file;
  for (const auto& path : {file, manifestOf(file), sumsOf(file)})
    EXPECT_EQ(std::filesystem::status(path).permissions() & std::filesystem::perms::owner_write,
              std::filesystem::perms::none);
}

TEST_F(Snapshot, OfARangeHasItsRows) {
  change("UPDATE Korvel_Audit_Trails SET DateTime = '2004-03-09 00:00:00.000' WHERE Nr > 1990");
  order.source.from = "2004-03-08 00:00:00.000";
  order.source.to = "2004-03-09 23:59:59.999";
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, 10U);
  EXPECT_EQ(textOf(taken.file, "SELECT min(Nr), max(Nr) FROM Korvel_Audit_Trails"), "1991 2000 ");
  EXPECT_EQ(snapshotFactsOf(*openSnapshot(taken.file))->source, order.source);
}

TEST_F(Snapshot, OfAnEmptyTrailIsEmpty) {
  change("DELETE FROM Korvel_Audit_Trails");
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, 0U);
  EXPECT_EQ(taken.facts.last, std::nullopt);
  EXPECT_THAT(verifyOutput(taken.file).findings, IsEmpty());
}

/// A table that some other program made: numbers repeat, are missing and are null; an own column.
TEST_F(Snapshot, KeepsRepeatedNumbersAndColumnsThatNobodyKnows) {
  change(
      "CREATE TABLE T AS SELECT *, 'é' AS \"Own \"\"Column\" FROM Korvel_Audit_Trails; DROP TABLE "
      "Korvel_Audit_Trails; ALTER TABLE T RENAME TO Korvel_Audit_Trails; UPDATE Korvel_Audit_Trails SET Nr = 5 "
      "WHERE Nr IN (6, 7); UPDATE Korvel_Audit_Trails SET Nr = NULL WHERE Nr = 9");
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, rowCount);
  const TrailComparison found = compared(taken.file);
  EXPECT_TRUE(found.isUnchanged());
  EXPECT_EQ(found.same, rowCount);
  EXPECT_EQ(textOf(taken.file, "SELECT count(*) FROM Korvel_Audit_Trails WHERE Nr = 5 AND \"Own \"\"Column\" = 'é'"),
            "3 ");
  EXPECT_EQ(textOf(taken.file, "SELECT count(*) FROM Korvel_Audit_Trails WHERE Nr IS NULL"), "1 ");
}

TEST_F(Snapshot, RefusesAValueThatItWouldChange) {
  change(
      "CREATE TABLE T (Nr INTEGER, DateTime TEXT); INSERT INTO T VALUES (1, '2004'), (2, '04.50'); "
      "DROP TABLE Korvel_Audit_Trails; ALTER TABLE T RENAME TO Korvel_Audit_Trails");
  EXPECT_THAT(failure(), HasSubstr("The value 04.50 in the column DateTime cannot be stored as it is"));
  change("UPDATE Korvel_Audit_Trails SET DateTime = NULL; UPDATE Korvel_Audit_Trails SET Nr = 'x' WHERE Nr = 2");
  std::filesystem::remove(unfinished());
  EXPECT_THAT(failure(), HasSubstr("x is no whole number"));
}

TEST_F(Snapshot, InterruptedAtEveryTenthIsContinuedToTheSameDigest) {
  const Digest whole = takeSnapshot(order).facts.digest;
  for (int tenth = 1; tenth < 10; ++tenth) {
    order.folder = folder / ("snapshot" + std::to_string(tenth));
    left = rowCount * tenth / 10;
    EXPECT_EQ(failure(), "no server");
    EXPECT_TRUE(std::filesystem::exists(unfinished()));
    EXPECT_FALSE(std::filesystem::exists(order.folder / "D.db"));
    left = unbroken;
    const TakenSnapshot taken = takeSnapshot(order);
    EXPECT_EQ(taken.continuedAt, rowCount * tenth / 10);
    EXPECT_EQ(taken.facts.digest, whole);
    EXPECT_EQ(taken.facts.rows, rowCount);
  }
}

TEST_F(Snapshot, MakesABrokenConnectionAnewWhileRowsCome) {
  const auto connect = order.connect;
  order.connect = [&, connect](std::string_view text, const std::stop_token& stop) {
    left = 700;
    return connect(text, stop);
  };
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, rowCount);
  EXPECT_EQ(taken.continuedAt, 0U);
  EXPECT_TRUE(compared(taken.file).isUnchanged());
}

TEST_F(Snapshot, GivesUpWhereAConnectionBringsNothingNew) {
  const auto connect = order.connect;
  order.connect = [&, connect](std::string_view text, const std::stop_token& stop) {
    left = 1;
    return connect(text, stop);
  };
  EXPECT_EQ(failure(), "the connection broke");
}

TEST_F(Snapshot, IsNotContinuedWhereCopiedRowsWereLostMeanwhile) {
  left = 1000;
  EXPECT_EQ(failure(), "no server");
  left = unbroken;
  change("DELETE FROM Korvel_Audit_Trails WHERE Nr = 10");
  EXPECT_THAT(failure(), HasSubstr("999 were there, now there are 998. Remove "));
  EXPECT_FALSE(std::filesystem::exists(order.folder / "D.db"));
}

TEST_F(Snapshot, OfATrailThatLosesRowsWhileItIsCopiedIsNone) {
  const auto connect = order.connect;
  order.connect = [&, connect](std::string_view text, const std::stop_token& stop) {
    if (connections == 2) change("DELETE FROM Korvel_Audit_Trails WHERE Nr = 10");
    return connect(text, stop);
  };
  EXPECT_THAT(failure(), HasSubstr("2000 rows came, 1999 are there now"));
  EXPECT_FALSE(std::filesystem::exists(order.folder / "D.db"));
}

TEST_F(Snapshot, LeavesOutRowsThatComeMeanwhile) {
  const auto connect = order.connect;
  order.connect = [&, connect](std::string_view text, const std::stop_token& stop) {
    if (connections == 1) change("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (2001)");
    return connect(text, stop);
  };
  EXPECT_EQ(takeSnapshot(order).facts.rows, rowCount);
}

TEST_F(Snapshot, WhatProgressThrowsEndsItAndIsContinued) {
  struct Enough {};
  order.folder = folder / "stopped";
  EXPECT_THROW((void)takeSnapshot(order,
                                  [](std::uint64_t rows, std::uint64_t) {
                                    if (rows > 0) throw Enough{};
                                  }),
               Enough);
  EXPECT_TRUE(std::filesystem::exists(unfinished()));
  EXPECT_GT(takeSnapshot(order).continuedAt, 0U);
}

TEST_F(Snapshot, ReplacesNothing) {
  const std::filesystem::path file = takeSnapshot(order).file;
  const std::string before = readFile(file);
  EXPECT_THAT(failure(), HasSubstr("will not replace"));
  EXPECT_EQ(readFile(file), before);
  order.folder = folder.path();  // of the trail itself
  EXPECT_THAT(failure(), HasSubstr("will not replace"));
}

TEST_F(Snapshot, ThatDoesNotSayWhereItEndedIsNotContinued) {
  left = 1000;
  EXPECT_EQ(failure(), "no server");
  left = unbroken;
  test::DatabaseWriter(unfinished()).run("UPDATE Korvel_Snapshot SET Value = '' WHERE Name = 'lastNumber'");
  EXPECT_THAT(failure(), HasSubstr("D.db.unfinished is damaged; remove it"));
}

/// A full disk between a row and its digest.
TEST_F(Snapshot, StoresNoRowWithoutItsDigest) {
  std::filesystem::create_directories(order.folder);
  const auto columns = std::vector<db::Field>{{"Nr"}, {"DateTime"}};
  {
    SnapshotFile file(unfinished(), order.source);
    file.start("now", 9);
    file.begin(columns);
    file.add(std::vector<db::Cell>{{"1", false}, {"a", false}});
    file.store();
    EXPECT_THROW(file.add(std::vector<db::Cell>{{"2", false}, {"04.50", false}}), Error);
    EXPECT_THROW(file.store(), Error);
  }
  const SnapshotFile again(unfinished(), order.source);
  EXPECT_EQ(again.rows(), 1U);
}

TEST_F(Snapshot, OfOtherRowsIsNotContinued) {
  left = 1000;
  EXPECT_EQ(failure(), "no server");
  left = unbroken;
  order.source.server = "another server";
  EXPECT_THAT(failure(), HasSubstr("is an unfinished snapshot of other rows: database D on a server. Remove it"));
}

TEST_F(Snapshot, OfAServerThatDidNotAnswerLeavesNothingThatStandsInTheWay) {
  left = 0;
  EXPECT_EQ(failure(), "no server");
  left = unbroken;
  order.source.server = "the right server";
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, rowCount);
  EXPECT_EQ(snapshotFactsOf(*openSnapshot(taken.file))->source.server, "the right server");
}

TEST_F(Snapshot, ThatWasCompleteAndNotYetNamedIsPublishedByTheNextRun) {
  const TakenSnapshot whole = takeSnapshot(order);
  // As a program leaves it that ends before it has written the manifest.
  std::filesystem::permissions(whole.file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
  for (const std::filesystem::path& proof : {manifestOf(whole.file), sumsOf(whole.file)}) {
    std::filesystem::permissions(proof, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
    std::filesystem::remove(proof);
  }
  std::filesystem::rename(whole.file, unfinished());
  left = 0;  // no server is asked any more
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, rowCount);
  EXPECT_EQ(taken.facts.digest, whole.facts.digest);
  EXPECT_THAT(verifyOutput(taken.file, {}).findings, IsEmpty());
}

TEST_F(Snapshot, ThatIsBegunByAnotherRunIsLeftAlone) {
  std::filesystem::create_directories(order.folder);
  const SnapshotFile other(unfinished(), order.source);
  EXPECT_THAT(failure(), HasSubstr("Another run writes"));
}

TEST_F(Snapshot, UnfinishedFilesOfOtherKindsAreRefused) {
  std::filesystem::create_directories(order.folder);
  std::ofstream(unfinished(), std::ios::binary) << std::string(5000, 'x');
  EXPECT_THAT(failure(), HasSubstr("file is not a database"));
  std::filesystem::remove(unfinished());
  test::writeAuditDatabase(unfinished(), {});
  EXPECT_THAT(failure(), HasSubstr("is no unfinished snapshot"));
}

TEST_F(Snapshot, OfANewerVersionIsRefused) {
  left = 1000;
  EXPECT_EQ(failure(), "no server");
  left = unbroken;
  test::DatabaseWriter(unfinished()).run("UPDATE Korvel_Snapshot SET Value = '2' WHERE Name = 'version'");
  EXPECT_THAT(failure(), HasSubstr("begun by another version"));
  order.folder = folder / "whole";
  const std::filesystem::path file = takeSnapshot(order).file;
  std::filesystem::permissions(file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
  const auto factsFailure = [&]() -> std::string {
    try {
      (void)snapshotFactsOf(*openSnapshot(file));
    } catch (const Error& error) {
      return error.description();
    }
    return {};
  };
  test::DatabaseWriter(file).run("UPDATE Korvel_Snapshot SET Value = '2' WHERE Name = 'version'");
  EXPECT_THAT(factsFailure(), HasSubstr("needs to be updated"));
  test::DatabaseWriter(file).run(
      "UPDATE Korvel_Snapshot SET Value = '1' WHERE Name = 'version'; "
      "DELETE FROM Korvel_Snapshot WHERE Name = 'digest'");
  EXPECT_THAT(factsFailure(), HasSubstr("unfinished or damaged"));
}

TEST_F(Snapshot, CannotBeMadeInAFile) {
  std::ofstream(order.folder) << "a file";
  EXPECT_THAT(failure(), HasSubstr("cannot be made"));
}

TEST_F(Snapshot, AnOrdinaryDatabaseIsNone) {
  EXPECT_FALSE(snapshotFactsOf(*openSnapshot(trail)));
}

TEST_F(Snapshot, InABagIsItsPayload) {
  order.asBag = true;
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.file, order.folder / "data" / "D.db");
  EXPECT_EQ(readFile(order.folder / "bagit.txt"), "BagIt-Version: 1.0\nTag-File-Character-Encoding: UTF-8\n");
  std::uintmax_t bytes = 0;
  for (const char* const manifest : {"manifest-sha256.txt", "tagmanifest-sha256.txt"}) {
    const auto sums = readSums(readFile(order.folder / manifest));
    ASSERT_TRUE(sums);
    EXPECT_EQ(sums->size(), 3U);
    for (const NamedSum& sum : *sums) {
      const std::filesystem::path file = order.folder / pathFromUtf8(sum.name);
      EXPECT_EQ(sumOfFile(file).sha256, sum.sha256) << sum.name;
      if (manifest == std::string("manifest-sha256.txt")) bytes += std::filesystem::file_size(file);
    }
  }
  EXPECT_THAT(readFile(order.folder / "bag-info.txt"), HasSubstr("Payload-Oxum: " + std::to_string(bytes) + ".3\n"));
  EXPECT_THAT(readFile(order.folder / "bag-info.txt"), HasSubstr("Audit trail of D on a server"));
}

TEST_F(Snapshot, WhoseTagFilesCouldNotBeWrittenBecomesABagWithTheNextRun) {
  order.asBag = true;
  // What is no file cannot be replaced.
  std::filesystem::create_directories(order.folder / "bag-info.txt");
  EXPECT_NE(failure(), "");
  EXPECT_TRUE(std::filesystem::exists(order.folder / "data" / "D.db"));
  EXPECT_FALSE(std::filesystem::exists(order.folder / "bagit.txt"));
  std::filesystem::remove(order.folder / "bag-info.txt");
  left = 0;  // no server is asked any more
  const TakenSnapshot taken = takeSnapshot(order);
  EXPECT_EQ(taken.facts.rows, rowCount);
  EXPECT_EQ(taken.continuedAt, rowCount);
  EXPECT_TRUE(isBagWith(order.folder, taken.file));
  EXPECT_THAT(failure(), HasSubstr("will not replace"));
}

TEST_F(Snapshot, OfOtherRowsOrChangedMeanwhileDoesNotBecomeABag) {
  order.asBag = true;
  const TakenSnapshot taken = takeSnapshot(order);
  std::filesystem::remove(order.folder / "bagit.txt");
  order.source.server = "another server";
  EXPECT_THAT(failure(), HasSubstr("will not replace"));
  order.source.server = "a server";
  std::filesystem::permissions(taken.file, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
  test::DatabaseWriter(taken.file).run("UPDATE Korvel_Audit_Trails SET EventType = 'x' WHERE Nr = 1234");
  EXPECT_THAT(failure(), HasSubstr("no longer as it was taken"));
  EXPECT_FALSE(std::filesystem::exists(order.folder / "bagit.txt"));
}

TEST_F(Snapshot, FailuresAreExplainedInTheLanguageOfTheUser) {
  (void)takeSnapshot(order);
  try {
    (void)takeSnapshot(order);
    ADD_FAILURE() << "replaced";
  } catch (const Error& error) {
    EXPECT_THAT(settings::describe(error, settings::LanguageOffset("10000")), HasSubstr("ersetzt"));
  }
}

}  // namespace
}  // namespace korvel::evidence
