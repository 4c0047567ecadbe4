#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/paths.h"

namespace korvel::test {

/// A database file, opened for reading with SQL.
class OpenedDatabase {
 public:
  explicit OpenedDatabase(const std::filesystem::path& file) {
    if (sqlite3_open_v2(utf8FromPath(extendedLengthPath(file)).c_str(), &database_, SQLITE_OPEN_READONLY, nullptr) !=
        SQLITE_OK)
      throw std::runtime_error("cannot open " + utf8FromPath(file));
  }
  ~OpenedDatabase() { sqlite3_close(database_); }
  OpenedDatabase(const OpenedDatabase&) = delete;
  OpenedDatabase& operator=(const OpenedDatabase&) = delete;

  using Row = std::vector<std::string>;
  /// All rows as texts, a null as "<null>".
  [[nodiscard]] std::vector<Row> rows(const std::string& query) const {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_, query.c_str(), -1, &statement, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(database_));
    std::vector<Row> all;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      Row& row = all.emplace_back();
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
        row.emplace_back(text == nullptr ? "<null>" : text);
      }
    }
    if (sqlite3_finalize(statement) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database_));
    return all;
  }
  [[nodiscard]] std::string text(const std::string& query) const { return rows(query).at(0).at(0); }
  [[nodiscard]] std::int64_t number(const std::string& query) const { return std::stoll(text(query)); }
  /// Rows of the audit trail under a condition.
  [[nodiscard]] std::int64_t count(const std::string& condition) const {
    return number("SELECT count(*) FROM Korvel_Audit_Trails WHERE " + condition);
  }

 private:
  sqlite3* database_ = nullptr;
};

}  // namespace korvel::test
