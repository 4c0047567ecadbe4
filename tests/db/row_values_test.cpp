// The shortcut to the values of a row: that it gives what the library gives, and that the library still allows it.

#include "db/embedded/row_values.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace korvel::db {
namespace {

struct Close {
  void operator()(sqlite3* database) const noexcept { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

Database database() {
  sqlite3* opened = nullptr;
  EXPECT_EQ(sqlite3_open(":memory:", &opened), SQLITE_OK);
  constexpr const char* rows =
      "CREATE TABLE t (a INTEGER PRIMARY KEY, b TEXT, c BLOB, d REAL, e TEXT, f TEXT, g TEXT, h TEXT);"
      "INSERT INTO t VALUES (1, 'x', x'00ff', 0.5, NULL, 'long enough for a page of its own', '', 'z'),"
      "(2, NULL, NULL, NULL, 'y', '', 'w', NULL), (3, 'x', x'01', 2.5, 'y', 'v', 'u', 't');"
      "CREATE INDEX i ON t (b, h);";
  EXPECT_EQ(sqlite3_exec(opened, rows, nullptr, nullptr, nullptr), SQLITE_OK);
  return Database(opened);
}

/// Statements whose rows the library makes in different ways: from the table, an index, a sorter, a co-routine.
class RowValuesOf : public ::testing::TestWithParam<const char*> {
 protected:
  RowValuesOf() {
    sqlite3_stmt* made = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database_.get(), GetParam(), -1, &made, nullptr), SQLITE_OK);
    statement_.reset(made);
  }

  Database database_ = database();
  Statement statement_;
};

TEST_P(RowValuesOf, AreTheValuesOfTheLibrary) {
  const int columns = sqlite3_column_count(statement_.get());
  RowValues values(statement_.get(), static_cast<std::size_t>(columns));
  int rows = 0;
  for (; sqlite3_step(statement_.get()) == SQLITE_ROW; ++rows) {
    values.read();
    for (int column = 0; column < columns; ++column)
      ASSERT_EQ(values.value(static_cast<std::size_t>(column)), sqlite3_column_value(statement_.get(), column));
  }
  EXPECT_EQ(rows, 3);
}

// Fails when a version of the library lays the values of a row out differently: the shortcut then gains nothing any
// more, and goes.
TEST_P(RowValuesOf, LieEvenlySpaced) {
  const int columns = sqlite3_column_count(statement_.get());
  ASSERT_GE(columns, 3);
  const auto placeOf = [&](int column) {
    return reinterpret_cast<const char*>(sqlite3_column_value(statement_.get(), column));
  };
  while (sqlite3_step(statement_.get()) == SQLITE_ROW) {
    const std::ptrdiff_t distance = placeOf(1) - placeOf(0);
    EXPECT_NE(distance, 0);
    for (int column = 2; column < columns; ++column) EXPECT_EQ(placeOf(column) - placeOf(0), column * distance);
  }
}

INSTANTIATE_TEST_SUITE_P(OfStatements, RowValuesOf,
                         ::testing::Values("SELECT * FROM t", "SELECT * FROM t ORDER BY e DESC",
                                           "SELECT h, b, a, b FROM t ORDER BY b, h",
                                           "SELECT a, b, c FROM t WHERE a < 3 UNION ALL SELECT 4, NULL, x'02'",
                                           "SELECT a, count(*), max(b), d FROM t GROUP BY a",
                                           "SELECT DISTINCT t.a, t.b, u.h FROM t JOIN t AS u USING (a)"));

}  // namespace
}  // namespace korvel::db
