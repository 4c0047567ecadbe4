#pragma once

#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/paths.h"
#include "db/embedded/audit_statements.h"

namespace korvel::test {

/// A record of the audit trail: the columns that queries use; the others have fixed texts.
struct AuditEntry {
  int number = 0;
  std::optional<std::string> dateTime;
  std::optional<std::string> tableName;
  std::optional<std::string> eventType;
  std::optional<std::string> auditType;
};

/// A program that writes a database, as the plant software does.
class DatabaseWriter {
 public:
  explicit DatabaseWriter(const std::filesystem::path& file) {
    if (sqlite3_open(utf8FromPath(extendedLengthPath(file)).c_str(), &handle_) != SQLITE_OK)
      throw std::runtime_error("cannot write " + utf8FromPath(file));
    // Readers of the viewer's own may be at work still.
    sqlite3_busy_timeout(handle_, 60'000);
    run("PRAGMA synchronous=OFF");  // for speed: tests need not survive a power failure
  }
  ~DatabaseWriter() { sqlite3_close(handle_); }
  DatabaseWriter(const DatabaseWriter&) = delete;
  DatabaseWriter& operator=(const DatabaseWriter&) = delete;

  void run(const std::string& sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error(std::string(sqlite3_errmsg(handle_)) + ": " + sql.substr(0, 200));
  }

  void insert(const std::vector<AuditEntry>& entries) {
    run("BEGIN");
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(handle_,
                       "INSERT INTO Korvel_Audit_Trails (Nr, DateTime, TableName, EventType, AuditType, ProjectGUID, "
                       "DatabaseName, ApplicationName, FieldName, EventItem, OldValue, NewValue, PCName, OSUser, "
                       "AppUser, UserName, Comments, T1) VALUES (?, ?, ?, ?, ?, 'guid', 'plant', 'editor', 'field', "
                       "'item', 'old', '', 'PC01', 'os', 'app', 'user', NULL, 1)",
                       -1, &statement, nullptr);
    for (const AuditEntry& entry : entries) {
      sqlite3_reset(statement);
      sqlite3_bind_int(statement, 1, entry.number);
      const std::array texts = {&entry.dateTime, &entry.tableName, &entry.eventType, &entry.auditType};
      for (int i = 0; i < 4; ++i) {
        const std::optional<std::string>& text = *texts.at(static_cast<std::size_t>(i));
        if (text)
          sqlite3_bind_text(statement, i + 2, text->data(), static_cast<int>(text->size()), SQLITE_TRANSIENT);
        else
          sqlite3_bind_null(statement, i + 2);
      }
      if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(handle_));
    }
    sqlite3_finalize(statement);
    run("COMMIT");
  }

  sqlite3* handle() { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
};

inline void writeAuditDatabase(const std::filesystem::path& file, const std::vector<AuditEntry>& entries) {
  DatabaseWriter writer(file);
  writer.run(db::auditTableSchema());
  writer.insert(entries);
  writer.run(db::auditIndexes());
}

}  // namespace korvel::test
