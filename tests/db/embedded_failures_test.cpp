#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <utility>

#include "base/atomic_file.h"
#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

class EmbeddedFailures : public testing::Test {
 protected:
  std::optional<Error> openingError(std::string_view database = "D") {
    return test::errorOf([&] { (void)openEmbedded(folder_.path(), database, {std::chrono::milliseconds(1)}); });
  }
  /// The lower eight bits: SQLite's primary error code.
  static int kindOf(const std::optional<Error>& error) { return error ? error->number() & 0xff : 0; }
  std::string file() const { return (folder_ / "D.db").string(); }

  test::TemporaryFolder folder_;
};

TEST_F(EmbeddedFailures, missingFile) {
  const auto error = openingError();
  EXPECT_EQ(kindOf(error), SQLITE_CANTOPEN);
  EXPECT_EQ(error->description(), "The audit database " + file() + " does not exist");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path())) << "and none was made";
}

TEST_F(EmbeddedFailures, missingFolder) {
  EXPECT_EQ(kindOf(test::errorOf([&] { (void)openEmbedded(folder_ / "none", "D"); })), SQLITE_CANTOPEN);
}

TEST_F(EmbeddedFailures, notAFile) {
  std::filesystem::create_directory(folder_ / "D.db");
  EXPECT_EQ(kindOf(openingError()), SQLITE_CANTOPEN);
}

TEST_F(EmbeddedFailures, notADatabase) {
  writeFileAtomically(
      file(),
      "This is a plain text, and long enough to be taken for the header of a database, if one did not look.\n"
      "This is a plain text, and long enough to be taken for the header of a database, if one did not look.\n");
  const auto error = openingError();
  EXPECT_EQ(kindOf(error), SQLITE_NOTADB);
  EXPECT_NE(error->description().find(file()), std::string::npos) << error->description();
}

TEST_F(EmbeddedFailures, emptyFileHasNoTable) {
  writeFileAtomically(file(), "");
  const auto connection = openEmbedded(folder_.path(), "D");
  EXPECT_EQ(kindOf(test::errorOfText(*connection, "SELECT * FROM Korvel_Audit_Trails")), SQLITE_ERROR);
  EXPECT_EQ(readFile(file()), "");
}

TEST_F(EmbeddedFailures, missingTable) {
  test::DatabaseWriter(folder_ / "D.db").run("CREATE TABLE other (a)");
  const auto connection = openEmbedded(folder_.path(), "D");
  for (const char* text :
       {"SELECT * FROM Korvel_Audit_Trails", "QueryAudits 'True','','','','','','','','','','False','False','False'"}) {
    const auto error = test::errorOfText(*connection, text);
    EXPECT_EQ(kindOf(error), SQLITE_ERROR) << text;
    EXPECT_EQ(error->description(), "no such table: Korvel_Audit_Trails (" + file() + ")");
  }
}

TEST_F(EmbeddedFailures, missingColumn) {
  test::DatabaseWriter(folder_ / "D.db")
      .run("CREATE TABLE Korvel_Audit_Trails (Nr INTEGER PRIMARY KEY, TableName TEXT)");
  const auto connection = openEmbedded(folder_.path(), "D");
  const auto error =
      test::errorOfText(*connection, "QueryAudits 'True','','','','','','','','','','False','False','False'");
  ASSERT_TRUE(error);
  EXPECT_NE(error->description().find("AuditType"), std::string::npos) << error->description();
}

TEST_F(EmbeddedFailures, wrongTextNamesItsLine) {
  test::writeAuditDatabase(folder_ / "D.db", {});
  const auto connection = openEmbedded(folder_.path(), "D");
  EXPECT_EQ(test::errorOfText(*connection, "SELECT nothing FROM Korvel_Audit_Trails")->line(), 1);
  EXPECT_EQ(test::errorOfText(*connection, "SELECT 1;\n\nSELECT *\nFROM Korvel_Audit_Trails\nWHERE Colour = 1")->line(),
            5);
  EXPECT_EQ(test::errorOfText(*connection, "SELECT 1;\nSELEC 2")->line(), 2);
  EXPECT_EQ(test::answerText(*connection, "SELECT 1 AS still"), "still\n1\n");
}

TEST_F(EmbeddedFailures, failureHalfWay) {
  test::writeAuditDatabase(folder_ / "D.db", {});
  const auto connection = openEmbedded(folder_.path(), "D");
  test::CollectingSink sink;
  const auto error = test::errorOf([&] {
    connection->execute("SELECT 1; SELECT abs(a) FROM (SELECT 1 AS a UNION ALL SELECT -9223372036854775808)", sink);
  });
  ASSERT_TRUE(error);
  EXPECT_NE(error->description().find("overflow"), std::string::npos) << error->description();
  ASSERT_EQ(sink.results.size(), 2U);
  EXPECT_FALSE(sink.results[1].ended);
}

TEST_F(EmbeddedFailures, textsThatWouldBeCutOrGuessed) {
  using namespace std::string_literals;
  test::writeAuditDatabase(folder_ / "D.db", {});
  const auto connection = openEmbedded(folder_.path(), "D");
  EXPECT_TRUE(test::errorOfText(*connection, "SELECT 1\0 WHERE 0"s));
  for (const char* text :
       {"SELECT * FROM Korvel_Audit_Trails WHERE Nr = @number", "SELECT ?", "SELECT :a", "SELECT $a", "SELECT ?5"})
    EXPECT_TRUE(test::errorOfText(*connection, text)) << text;
}

TEST_F(EmbeddedFailures, damagedPages) {
  std::vector<test::AuditEntry> entries;
  for (int number = 1; number <= 3000; ++number)
    entries.push_back({number, "2004-03-07 13:45:59.123", "UA", "E", "CS"});
  test::writeAuditDatabase(folder_ / "D.db", entries);
  const std::string whole = readFile(file());
  constexpr std::size_t pageSize = 4096;
  std::size_t failures = 0;
  for (std::size_t page = 1; page * pageSize < whole.size(); page += 5) {
    std::string damaged = whole;
    damaged.replace(page * pageSize, pageSize, pageSize, '\xfe');
    std::ofstream(file(), std::ios::binary) << damaged;
    const auto error = test::errorOf([&] {
      const auto connection = openEmbedded(folder_.path(), "D");
      (void)test::resultsOf(*connection, "SELECT * FROM Korvel_Audit_Trails");
      (void)test::resultsOf(*connection, "QueryAudits 'True','True','','True','','','','','','','False','',''");
    });
    if (!error) continue;  // a page that these queries do not read
    EXPECT_EQ(kindOf(error), SQLITE_CORRUPT) << error->description();
    EXPECT_NE(error->description().find(file()), std::string::npos);
    ++failures;
  }
  EXPECT_GT(failures, 20U);
}

TEST_F(EmbeddedFailures, truncatedFile) {
  std::vector<test::AuditEntry> entries;
  for (int number = 1; number <= 3000; ++number)
    entries.push_back({number, "2004-03-07 13:45:59.123", "UA", "E", "CS"});
  test::writeAuditDatabase(folder_ / "D.db", entries);
  std::filesystem::resize_file(folder_ / "D.db", std::filesystem::file_size(folder_ / "D.db") / 2 + 100);
  const auto error = test::errorOf([&] {
    const auto connection = openEmbedded(folder_.path(), "D");
    (void)test::resultsOf(*connection, "SELECT * FROM Korvel_Audit_Trails");
  });
  EXPECT_EQ(kindOf(error), SQLITE_CORRUPT);
}

TEST_F(EmbeddedFailures, lockedDatabase) {
  test::writeAuditDatabase(folder_ / "D.db", {});
  test::DatabaseWriter writer(folder_ / "D.db");
  writer.run("BEGIN EXCLUSIVE");
  const auto error = openingError();
  EXPECT_EQ(kindOf(error), SQLITE_BUSY);
  EXPECT_EQ(error->description(), "database is locked (" + file() + ")");
  writer.run("ROLLBACK");
  EXPECT_FALSE(openingError());
}

TEST_F(EmbeddedFailures, lockedWhileTheConnectionIsOpen) {
  test::writeAuditDatabase(folder_ / "D.db", {});
  const auto connection = openEmbedded(folder_.path(), "D", {std::chrono::milliseconds(1)});
  test::DatabaseWriter writer(folder_ / "D.db");
  writer.run("BEGIN EXCLUSIVE");
  EXPECT_EQ(kindOf(test::errorOfText(*connection, "SELECT * FROM Korvel_Audit_Trails")), SQLITE_BUSY);
  writer.run("COMMIT");
  EXPECT_FALSE(test::errorOfText(*connection, "SELECT * FROM Korvel_Audit_Trails"));
}

/// A layer over SQLite's system interface whose pauses take no time: they are added up, and can run an action.
class Pauses {
 public:
  Pauses() : layer_(*sqlite3_vfs_find(nullptr)) {
    layer_.zName = "pauses";
    layer_.pNext = nullptr;
    layer_.xSleep = [](sqlite3_vfs*, int microseconds) {
      total_ += std::chrono::microseconds(microseconds);
      if (meanwhile_) meanwhile_();
      return microseconds;
    };
    total_ = {};
    sqlite3_vfs_register(&layer_, 1);
  }
  ~Pauses() {
    sqlite3_vfs_unregister(&layer_);
    meanwhile_ = nullptr;
  }
  Pauses(const Pauses&) = delete;
  Pauses& operator=(const Pauses&) = delete;

  static std::chrono::microseconds total() { return total_; }
  static void meanwhile(std::function<void()> action) { meanwhile_ = std::move(action); }

 private:
  sqlite3_vfs layer_;
  static inline std::chrono::microseconds total_{};
  static inline std::function<void()> meanwhile_;
};

TEST_F(EmbeddedFailures, aLockIsWaitedForUntilItGoes) {
  test::writeAuditDatabase(folder_ / "D.db", {{7, "2004-03-07", "T", "E", "CS"}});
  test::DatabaseWriter writer(folder_ / "D.db");
  writer.run("BEGIN EXCLUSIVE");
  const Pauses pauses;
  Pauses::meanwhile([&] {
    if (sqlite3_get_autocommit(writer.handle()) == 0) writer.run("COMMIT");
  });
  const auto connection = openEmbedded(folder_.path(), "D");
  EXPECT_GT(Pauses::total(), std::chrono::microseconds(0)) << "the database was locked";
  writer.run("BEGIN EXCLUSIVE");
  EXPECT_EQ(test::answerText(*connection, "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n7\n");
}

TEST_F(EmbeddedFailures, aLockThatStaysIsWaitedForAsLongAsWasAsked) {
  test::writeAuditDatabase(folder_ / "D.db", {});
  test::DatabaseWriter writer(folder_ / "D.db");
  writer.run("BEGIN EXCLUSIVE");
  for (const auto wanted : {EmbeddedOptions().busyTimeout, std::chrono::milliseconds(3000)}) {
    const Pauses pauses;
    EXPECT_EQ(kindOf(test::errorOf([&] { (void)openEmbedded(folder_.path(), "D", {wanted}); })), SQLITE_BUSY);
    EXPECT_EQ(Pauses::total(), wanted);
  }
}

}  // namespace
}  // namespace korvel::db
