#include <gtest/gtest.h>
#include <sqlite3.h>

#include <map>

#include "base/atomic_file.h"
#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

constexpr std::string_view sentence = "The embedded audit database is opened for reading only";

/// A folder with a database, and the initial contents of its files.
class EmbeddedReadOnly : public testing::Test {
 protected:
  void SetUp() override {
    test::DatabaseWriter writer(folder_ / "D.db");
    writer.run(auditTableSchema());
    writer.insert({{1, "2004-03-07 13:45:59.123", "UATable", "CHANGE", "CS"}});
    writer.run(auditIndexes());
    prepare(writer);
    before_ = contents();
  }
  virtual void prepare(test::DatabaseWriter&) {}

  void TearDown() override { EXPECT_EQ(contents(), before_); }

  std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.path()))
      if (entry.is_regular_file()) files[entry.path().string()] = readFile(entry.path());
    return files;
  }
  std::string path(const char* name) const { return (folder_ / name).string(); }
  std::unique_ptr<Connection> open() const { return openEmbedded(folder_.path(), "D"); }

  void expectRefused(const std::string& text, const std::string& named) {
    const auto connection = open();
    const auto error = test::errorOfText(*connection, text);
    ASSERT_TRUE(error) << text;
    EXPECT_EQ(error->number(), SQLITE_AUTH) << text << ": " << error->description();
    EXPECT_TRUE(error->description().starts_with(sentence)) << text << ": " << error->description();
    EXPECT_NE(error->description().find(": " + named + " is not allowed"), std::string::npos)
        << text << ": " << error->description();
    EXPECT_EQ(contents(), before_) << text;
    EXPECT_EQ(test::answerText(*connection, "SELECT count(*) AS n FROM Korvel_Audit_Trails"), "n\n1\n") << text;
  }

  test::TemporaryFolder folder_;
  std::map<std::string, std::string> before_;
};

TEST_F(EmbeddedReadOnly, changesOfRows) {
  expectRefused("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (2)", "INSERT");
  expectRefused("UPDATE Korvel_Audit_Trails SET Comments = 'forged'", "UPDATE");
  expectRefused("DELETE FROM Korvel_Audit_Trails", "DELETE");
  expectRefused("REPLACE INTO Korvel_Audit_Trails (Nr) VALUES (1)", "REPLACE");
  expectRefused("WITH x AS (SELECT 1) DELETE FROM Korvel_Audit_Trails", "WITH");
  expectRefused("SELECT 1; SELECT 2; delete from Korvel_Audit_Trails", "DELETE");
  expectRefused("/* harmless */ -- really\n delete from Korvel_Audit_Trails", "DELETE");
  expectRefused("INSERT INTO Korvel_Audit_Trails (Nr) VALUES (2) RETURNING Nr", "INSERT");
}

TEST_F(EmbeddedReadOnly, changesOfTheSchema) {
  expectRefused("CREATE TABLE t (a)", "CREATE");
  expectRefused("CREATE TEMP TABLE t (a)", "CREATE");
  expectRefused("CREATE TABLE temp.t AS SELECT 1", "CREATE");
  expectRefused("CREATE VIEW v AS SELECT 1", "CREATE");
  expectRefused("CREATE INDEX i ON Korvel_Audit_Trails (Nr)", "CREATE");
  expectRefused("CREATE TRIGGER g AFTER INSERT ON Korvel_Audit_Trails BEGIN SELECT 1; END", "CREATE");
  expectRefused("CREATE VIRTUAL TABLE f USING fts5(a)", "CREATE");
  expectRefused("DROP TABLE Korvel_Audit_Trails", "DROP");
  expectRefused("ALTER TABLE Korvel_Audit_Trails ADD COLUMN x", "ALTER");
  expectRefused("ALTER TABLE Korvel_Audit_Trails RENAME TO x", "ALTER");
  expectRefused("REINDEX", "REINDEX");
  expectRefused("ANALYZE", "ANALYZE");
  expectRefused("INSERT INTO sqlite_master VALUES ('table','x','x',0,'CREATE TABLE x(a)')", "INSERT");
  const auto connection = open();
  for (const char* text : {"UPDATE sqlite_master SET sql = 'x'", "DELETE FROM sqlite_schema",
                           "UPDATE sqlite_dbpage SET data = zeroblob(4096)"})
    EXPECT_TRUE(test::errorOfText(*connection, text)) << text;
}

TEST_F(EmbeddedReadOnly, otherFiles) {
  expectRefused("ATTACH '" + path("new.db") + "' AS n", "ATTACH");
  expectRefused("ATTACH ':memory:' AS n", "ATTACH");
  expectRefused("ATTACH 'file:" + path("D.db") + "?mode=rwc' AS n", "ATTACH");
  expectRefused("DETACH dbo", "DETACH");
  expectRefused("VACUUM", "VACUUM");
  expectRefused("VACUUM INTO '" + path("copy.db") + "'", "VACUUM");
}

TEST_F(EmbeddedReadOnly, transactions) {
  for (const char* word : {"BEGIN", "COMMIT", "ROLLBACK", "SAVEPOINT", "RELEASE"})
    expectRefused(
        std::string(word) + (std::string_view("SAVEPOINT RELEASE").find(word) != std::string_view::npos ? " s" : ""),
        word);
  expectRefused("BEGIN EXCLUSIVE", "BEGIN");
}

TEST_F(EmbeddedReadOnly, pragmasThatChangeSomething) {
  for (const char* pragma : {"journal_mode=WAL",
                             "journal_mode=DELETE",
                             "journal_mode",
                             "wal_checkpoint",
                             "wal_checkpoint(TRUNCATE)",
                             "user_version=5",
                             "application_id=5",
                             "schema_version=99",
                             "query_only=OFF",
                             "writable_schema=ON",
                             "trusted_schema=ON",
                             "encoding='UTF-16'",
                             "page_size=512",
                             "auto_vacuum=1",
                             "incremental_vacuum",
                             "optimize",
                             "temp_store=FILE",
                             "temp_store_directory='/tmp'",
                             "data_store_directory='/tmp'",
                             "mmap_size=1000000000",
                             "locking_mode=EXCLUSIVE",
                             "cell_size_check=OFF",
                             "key='x'",
                             "foreign_keys=ON",
                             "case_sensitive_like=ON",
                             "shrink_memory",
                             "secure_delete=ON",
                             "wal_autocheckpoint=1",
                             "max_page_count=1",
                             "cache_spill=ON",
                             "threads=8",
                             "hard_heap_limit=1",
                             "synchronous=OFF",
                             "reverse_unordered_selects=ON"}) {
    const std::string text(pragma);
    expectRefused("PRAGMA " + text, "PRAGMA " + text.substr(0, text.find_first_of("=(")));
  }
  expectRefused("PRAGMA dbo.user_version=5", "PRAGMA user_version");
  expectRefused("PRAGMA main.journal_mode=OFF", "PRAGMA journal_mode");
}

TEST_F(EmbeddedReadOnly, functionsThatReachOut) {
  expectRefused("SELECT load_extension('" + path("x.so") + "')", "load_extension()");
  const auto connection = open();
  const std::string writing = "SELECT writefile('" + path("written") + "', 'x')";
  for (const char* text :
       {writing.c_str(), "SELECT readfile('/etc/hostname')", "SELECT edit('x')", "SELECT fts3_tokenizer('simple')",
        "SELECT fts3_tokenizer('simple', x'0000000000000000')", "SELECT * FROM fsdir('/')"})
    EXPECT_TRUE(test::errorOfText(*connection, text)) << text;
}

TEST_F(EmbeddedReadOnly, readingIsAllowed) {
  const auto connection = open();
  for (const char* text :
       {"SELECT * FROM Korvel_Audit_Trails", "SELECT * FROM sqlite_master", "PRAGMA table_info(Korvel_Audit_Trails)",
        "PRAGMA integrity_check", "PRAGMA quick_check(1)", "PRAGMA user_version", "SELECT * FROM pragma_table_list",
        "SELECT * FROM pragma_index_info('Korvel_Audit_Trails_Type')", "SELECT * FROM json_each('[1, 2]')",
        "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 10) SELECT i FROM c",
        "EXPLAIN QUERY PLAN SELECT * FROM Korvel_Audit_Trails", "VALUES (1), (2)",
        "SELECT json_extract('{\"a\":1}', '$.a')",
        "SELECT upper(TableName), count(*) FROM Korvel_Audit_Trails GROUP BY 1 HAVING count(*) > 0 ORDER BY 2 DESC"}) {
    const auto error = test::errorOfText(*connection, text);
    EXPECT_FALSE(error) << text << ": " << error->description();
  }
}

TEST_F(EmbeddedReadOnly, largeSortsStayInMemory) {
  const auto connection = open();
  const auto results =
      test::resultsOf(*connection,
                      "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 50000) "
                      "SELECT max(length(t)) FROM (SELECT hex(randomblob(100)) AS t FROM c ORDER BY t)");
  EXPECT_EQ(results.at(0).column(0).at(0), "200");
}

/// A malicious database: its views and triggers call functions with side effects. A view that never ends is not among
/// them.
class HostileSchema : public EmbeddedReadOnly {
 protected:
  void prepare(test::DatabaseWriter& writer) override {
    writer.run("CREATE VIEW loads AS SELECT load_extension('" + path("x.so") + "') AS a");
    writer.run("CREATE VIEW tokenizes AS SELECT fts3_tokenizer('simple', x'4141414141414141') AS a");
    writer.run("CREATE VIEW harmless AS SELECT Nr FROM Korvel_Audit_Trails");
    writer.run("CREATE TRIGGER g INSTEAD OF INSERT ON harmless BEGIN DELETE FROM Korvel_Audit_Trails; END");
    writer.run("CREATE TRIGGER h AFTER UPDATE ON Korvel_Audit_Trails BEGIN DELETE FROM Korvel_Audit_Trails; END");
  }
};

TEST_F(HostileSchema, doesNoHarm) {
  const auto connection = open();
  EXPECT_TRUE(test::errorOfText(*connection, "SELECT * FROM loads"));
  EXPECT_TRUE(test::errorOfText(*connection, "SELECT * FROM tokenizes"));
  EXPECT_EQ(test::answerText(*connection, "SELECT * FROM harmless"), "Nr\n1\n");
  expectRefused("INSERT INTO harmless VALUES (1)", "INSERT");
}

/// A manipulated schema table, as a file from elsewhere may have.
TEST(TamperedSchema, isAnErrorAndNoCrash) {
  const test::TemporaryFolder folder;
  {
    test::DatabaseWriter writer(folder / "D.db");
    writer.run(auditTableSchema());
    writer.run("PRAGMA writable_schema=ON");
    writer.run("UPDATE sqlite_master SET sql = 'CREATE TABLE Korvel_Audit_Trails (((' ");
  }
  const auto error = test::errorOf([&] { (void)openEmbedded(folder.path(), "D"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number() & 0xff, SQLITE_CORRUPT) << error->description();
}

}  // namespace
}  // namespace korvel::db
