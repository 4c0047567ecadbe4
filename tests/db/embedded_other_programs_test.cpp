#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>

#include "base/atomic_file.h"
#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

/// A database that another program is writing, has written, or was killed while writing.
class OtherPrograms : public testing::Test {
 protected:
  std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
      files[entry.path().filename()] = readFile(entry.path());
    return files;
  }

  /// Lets a child process write and then end without closing, as if it had been killed.
  template <typename Writing>
  void writeAndDie(Writing writing) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      try {
        auto* writer = new test::DatabaseWriter(file_);  // never closed
        writing(*writer);
      } catch (...) {
        ::_exit(1);
      }
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
  }

  std::string numbers() {
    const auto connection = openEmbedded(folder_.path(), "D", {std::chrono::milliseconds(1)});
    return test::answerText(*connection, "SELECT Nr FROM Korvel_Audit_Trails ORDER BY Nr");
  }

  /// The result of reading, after checking that no file was changed.
  std::string numbersWithoutATrace() {
    const auto before = contents();
    std::string text = numbers();
    EXPECT_EQ(contents(), before);
    return text;
  }

  test::TemporaryFolder folder_;
  std::filesystem::path file_ = folder_ / "D.db";
};

const std::vector<test::AuditEntry> first = {{1, "2004-03-07", "T", "E", "CS"}};
const std::vector<test::AuditEntry> second = {{2, "2004-03-08", "T", "E", "CS"}};

void makeWithLog(test::DatabaseWriter& writer) {
  writer.run("PRAGMA journal_mode=WAL");
  writer.run(auditTableSchema());
  writer.insert(first);
}

TEST_F(OtherPrograms, closedWriteAheadLog) {
  {
    test::DatabaseWriter writer(file_);
    makeWithLog(writer);
  }
  ASSERT_EQ(contents().size(), 1U) << "the log is gone";
  EXPECT_EQ(numbersWithoutATrace(), "Nr\n1\n");
}

TEST_F(OtherPrograms, emptyWriteAheadLog) {
  {
    test::DatabaseWriter writer(file_);
    makeWithLog(writer);
  }
  writeFileAtomically(folder_ / "D.db-wal", "");
  EXPECT_EQ(numbersWithoutATrace(), "Nr\n1\n") << "an empty log holds nothing that the file lacks";
}

TEST_F(OtherPrograms, writeAheadLogOfARunningProgram) {
  int toChild[2];
  int toParent[2];
  ASSERT_EQ(::pipe(toChild) | ::pipe(toParent), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    char byte = 'x';
    try {
      auto* writer = new test::DatabaseWriter(file_);
      makeWithLog(*writer);
      writer->insert(second);
      (void)!::write(toParent[1], &byte, 1);
      (void)!::read(toChild[0], &byte, 1);
    } catch (...) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  char byte = 0;
  ASSERT_EQ(::read(toParent[0], &byte, 1), 1);
  const auto before = contents();
  EXPECT_GT(before.at("D.db-wal").size(), 0U);
  EXPECT_EQ(numbers(), "Nr\n1\n2\n");
  EXPECT_EQ(contents(), before);
  ASSERT_EQ(::write(toChild[1], &byte, 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const int end : {toChild[0], toChild[1], toParent[0], toParent[1]}) ::close(end);
}

TEST_F(OtherPrograms, writeAheadLogOfAKilledProgram) {
  writeAndDie([](test::DatabaseWriter& writer) {
    makeWithLog(writer);
    writer.insert(second);
  });
  ASSERT_TRUE(contents().contains("D.db-wal"));
  EXPECT_EQ(numbersWithoutATrace(), "Nr\n1\n2\n");
}

TEST_F(OtherPrograms, writeAheadLogCopiedWithoutItsIndex) {
  writeAndDie([](test::DatabaseWriter& writer) {
    makeWithLog(writer);
    writer.insert(second);
  });
  std::filesystem::remove(folder_ / "D.db-shm");
  const auto before = contents();
  const auto error = test::errorOf([&] { (void)numbers(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number() & 0xff, SQLITE_READONLY);
  EXPECT_NE(error->description().find("D.db-wal"), std::string::npos) << error->description();
  EXPECT_EQ(contents(), before);
}

TEST_F(OtherPrograms, writeToAFileThatWasTakenToStandStill) {
  {
    test::DatabaseWriter writer(file_);
    makeWithLog(writer);
  }
  const auto connection = openEmbedded(folder_.path(), "D");
  {
    test::DatabaseWriter writer(file_);
    writer.insert(second);
  }
  const auto error = test::errorOfText(*connection, "SELECT Nr FROM Korvel_Audit_Trails");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), SQLITE_BUSY_SNAPSHOT) << error->description();
  EXPECT_EQ(numbers(), "Nr\n1\n2\n") << "asked again, it answers";
}

TEST_F(OtherPrograms, interruptedChange) {
  writeAndDie([](test::DatabaseWriter& writer) {
    writer.run(auditTableSchema());
    writer.insert(first);
    writer.run("PRAGMA cache_size=1; PRAGMA cache_spill=1");
    writer.run(
        "BEGIN; WITH RECURSIVE c(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM c WHERE i < 3000) "
        "INSERT INTO Korvel_Audit_Trails (Nr, Comments) SELECT i, hex(randomblob(100)) FROM c");
  });
  const auto before = contents();
  ASSERT_TRUE(before.contains("D.db-journal"));
  const auto error = test::errorOf([&] { (void)numbers(); });
  ASSERT_TRUE(error) << "half a change must not be shown";
  EXPECT_EQ(error->number(), SQLITE_READONLY_ROLLBACK) << error->description();
  EXPECT_NE(error->description().find("was interrupted"), std::string::npos) << error->description();
  EXPECT_EQ(contents(), before);
}

TEST_F(OtherPrograms, changeInProgress) {
  test::DatabaseWriter writer(file_);
  writer.run(auditTableSchema());
  writer.insert(first);
  writer.run("BEGIN IMMEDIATE; INSERT INTO Korvel_Audit_Trails (Nr) VALUES (2)");
  EXPECT_EQ(numbersWithoutATrace(), "Nr\n1\n") << "what is not committed is not shown";
  writer.run("COMMIT");
  EXPECT_EQ(numbers(), "Nr\n1\n2\n");
}

TEST_F(OtherPrograms, readingDoesNotStopAWriter) {
  test::DatabaseWriter writer(file_);
  writer.run(auditTableSchema());
  const auto connection = openEmbedded(folder_.path(), "D");
  (void)test::resultsOf(*connection, "SELECT * FROM Korvel_Audit_Trails");
  EXPECT_NO_THROW(writer.insert(first));
  test::CollectingSink stopped(1);
  connection->execute("SELECT 1 FROM Korvel_Audit_Trails", stopped);
  EXPECT_NO_THROW(writer.insert(second));
  EXPECT_EQ(test::answerText(*connection, "SELECT Nr FROM Korvel_Audit_Trails"), "Nr\n1\n2\n");
}

TEST(EmbeddedPipe, isNoDatabase) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "P.db").c_str(), 0600), 0);
  const auto error = test::errorOf([&] { (void)openEmbedded(folder.path(), "P"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number() & 0xff, SQLITE_CANTOPEN);
}

}  // namespace
}  // namespace korvel::db
