#include <gtest/gtest.h>

#include <charconv>
#include <limits>

#include "base/numbers.h"
#include "db/embedded/embedded_connection.h"
#include "tests/db/audit_database.h"
#include "tests/db/collected_answer.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using namespace std::string_literals;

class EmbeddedValues : public testing::Test {
 protected:
  std::string answer(const std::string& sql) { return test::answerText(connection(), sql); }
  /// The one value that a statement gives.
  std::string value(const std::string& expression) {
    const auto results = test::resultsOf(connection(), "SELECT " + expression);
    return results.at(0).column(0).at(0);
  }
  std::string kinds(const std::string& sql) {
    constexpr std::string_view letters = "tnbdx";
    std::string text;
    const auto results = test::resultsOf(connection(), sql);
    for (const Field& field : results.at(0).fields) text += letters.at(static_cast<std::size_t>(field.kind));
    return text;
  }
  void write(const std::string& sql) { test::DatabaseWriter(folder_ / "D.db").run(sql); }
  Connection& connection() {
    if (!connection_) connection_ = openEmbedded(folder_.path(), "D");
    return *connection_;
  }

  test::TemporaryFolder folder_;

 private:
  void SetUp() override { write("CREATE TABLE t (a, b)"); }
  std::unique_ptr<Connection> connection_;
};

TEST_F(EmbeddedValues, numbers) {
  EXPECT_EQ(value("0"), "0");
  EXPECT_EQ(value("-42"), "-42");
  EXPECT_EQ(value("9223372036854775807"), "9223372036854775807");
  EXPECT_EQ(value("-9223372036854775808"), "-9223372036854775808");
  EXPECT_EQ(value("5.0"), "5");
  EXPECT_EQ(value("0.1"), "0.1");
  EXPECT_EQ(value("-0.5"), "-0.5");
  EXPECT_EQ(value("-0.0"), "0");
  EXPECT_EQ(value("1.0/3"), "0.3333333333333333");
  EXPECT_EQ(value("100000.0"), "100000");
  EXPECT_EQ(value("12345678.9"), "12345678.9");
  EXPECT_EQ(value("0.00001"), "0.00001");
  EXPECT_EQ(value("0.00000015"), "1.5e-07");
  EXPECT_EQ(value("1e17"), "1e+17");
  EXPECT_EQ(value("9e999"), "inf");
}

TEST_F(EmbeddedValues, everyNumberFitsAndReadsBack) {
  using limits = std::numeric_limits<double>;
  for (const double number : {limits::max(), limits::lowest(), limits::min(), limits::denorm_min(), 0.1 + 0.2,
                              -99999999999999984.0, -0.000012345678901234567, 1e-5, 123456789012345.67}) {
    NumberText text{};
    const std::string written(text.data(), writeNumber(number, text));
    double read = 0.0;
    EXPECT_EQ(std::from_chars(written.data(), written.data() + written.size(), read).ptr,
              written.data() + written.size());
    EXPECT_EQ(read, number) << written;
  }
}

TEST_F(EmbeddedValues, textsStandAsTheyAre) {
  EXPECT_EQ(value("'  blanks  '"), "  blanks  ");
  EXPECT_EQ(value("''"), "");
  EXPECT_EQ(value("'Ölstand Ω 漢字 🙂'"), "Ölstand Ω 漢字 🙂");
  EXPECT_EQ(value("'two' || char(13) || char(10) || 'lines'"), "two\r\nlines");
  EXPECT_EQ(value("'a' || char(0) || 'b'"), "a\0b"s);
  EXPECT_EQ(value("'2004-03-07 13:45:59.123'"), "2004-03-07 13:45:59.123");
}

TEST_F(EmbeddedValues, binaryValuesAreLowerCaseHex) {
  EXPECT_EQ(value("x'00FFa1'"), "00ffa1");
  EXPECT_EQ(value("x''"), "");
  EXPECT_EQ(value("zeroblob(3)"), "000000");
  EXPECT_EQ(answer("SELECT x'01' AS a, x'0203' AS b UNION ALL SELECT x'0405', NULL"), "a|b\n01|0203\n0405|NULL\n");
}

TEST_F(EmbeddedValues, nullIsNotTheEmptyText) {
  const auto rows = test::resultsOf(connection(), "SELECT NULL, ''").at(0).rows;
  EXPECT_FALSE(rows.at(0).at(0).has_value());
  EXPECT_EQ(rows.at(0).at(1), "");
}

TEST_F(EmbeddedValues, aNullSaysNothingAboutTheRowsBelow) {
  EXPECT_EQ(answer("SELECT NULL AS a UNION ALL SELECT 1 UNION ALL SELECT NULL UNION ALL SELECT 'x'"),
            "a\nNULL\n1\nNULL\nx\n");
  EXPECT_EQ(answer("SELECT NULL AS a UNION ALL SELECT 0.5 UNION ALL SELECT NULL UNION ALL SELECT x'00ff'"),
            "a\nNULL\n0.5\nNULL\n00ff\n");
  EXPECT_EQ(answer("SELECT NULL AS a UNION ALL SELECT '' UNION ALL SELECT x''"), "a\nNULL\n\n\n");
}

TEST_F(EmbeddedValues, textsOfADatabaseInAnotherEncoding) {
  std::filesystem::remove(folder_ / "D.db");
  write("PRAGMA encoding='UTF-16'; CREATE TABLE t (a TEXT); INSERT INTO t VALUES ('Ölstand 🙂')");
  EXPECT_EQ(answer("SELECT a FROM t"), "a\nÖlstand 🙂\n");
}

TEST_F(EmbeddedValues, kindsFollowTheDeclaredTypes) {
  write(
      "CREATE TABLE k (a INTEGER, b VARCHAR(20), c DATETIME, d BIT, e VARBINARY(8), f REAL, g NVARCHAR(9), h "
      "datetime2(7), "
      "i boolean, j money, k blob, l decimal(9,2))");
  EXPECT_EQ(kinds("SELECT * FROM k"), "ntdbxntdbnxn");
}

TEST_F(EmbeddedValues, kindsOfComputedColumnsFollowTheFirstRow) {
  EXPECT_EQ(kinds("SELECT 1, 1.5, 'x', x'00', NULL, count(*) FROM t"), "nntxtn");
  EXPECT_EQ(kinds("SELECT a || b FROM t"), "t");
}

TEST_F(EmbeddedValues, severalStatementsGiveSeveralResults) {
  EXPECT_EQ(answer("SELECT 1 AS a; SELECT 2 AS b, 3 AS c;"), "a\n1\n--\nb|c\n2|3\n");
  EXPECT_EQ(answer(";; SELECT 1 AS a ;;; -- end"), "a\n1\n");
  EXPECT_EQ(answer("/* first */ SELECT 1 AS a -- one\n; /* second */ SELECT ';' AS b"), "a\n1\n--\nb\n;\n");
}

TEST_F(EmbeddedValues, nothingToRunGivesNoResult) {
  for (const char* text : {"", "   ", ";", ";;;", "-- comment", "/* comment */", "/* unclosed"})
    EXPECT_EQ(answer(text), "") << text;
}

TEST_F(EmbeddedValues, emptyResultsHaveTheirFields) {
  EXPECT_EQ(answer("SELECT a, b AS \"B b\" FROM t"), "a|B b\n");
  EXPECT_TRUE(test::resultsOf(connection(), "SELECT a FROM t").at(0).ended);
}

TEST_F(EmbeddedValues, namesAreReadAsOnTheServer) {
  EXPECT_EQ(answer("SELECT [a], \"b\" FROM dbo.t UNION ALL SELECT 1, 2 FROM [dbo].[t]"), "a|b\n");
  EXPECT_TRUE(test::errorOfText(connection(), "SELECT \"misspelt\" FROM t"));
}

TEST_F(EmbeddedValues, aSinkThatHasEnoughEndsTheAnswer) {
  test::CollectingSink sink(2);
  connection().execute("SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3; SELECT 4", sink);
  ASSERT_EQ(sink.results.size(), 1U);
  EXPECT_EQ(sink.results[0].rows.size(), 2U);
  EXPECT_FALSE(sink.results[0].ended);
  EXPECT_EQ(answer("SELECT 5 AS five"), "five\n5\n");
}

}  // namespace
}  // namespace korvel::db
