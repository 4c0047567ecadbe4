#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "db/embedded/read_only_authorizer.h"

struct sqlite3;
struct sqlite3_stmt;

namespace korvel::db {

struct SqliteCloser {
  void operator()(sqlite3* handle) const noexcept;
};
struct SqliteFinalizer {
  void operator()(sqlite3_stmt* statement) const noexcept;
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteFinalizer>;

/// A database file, opened so that nothing can be written through it, whatever is asked of it.
class SqliteDatabase {
 public:
  /// Throws Error for a file that is missing, no database, damaged in its first pages, locked for longer than
  /// `busyTimeout`, or only readable after a change that reading must not make.
  SqliteDatabase(const std::filesystem::path& file, std::chrono::milliseconds busyTimeout);

  /// How long a locked database is waited for from here on.
  void setBusyTimeout(std::chrono::milliseconds busyTimeout) noexcept;
  /// Compiles the first statement of `text` from `start` on and moves `start` behind it; null for blanks and comments.
  [[nodiscard]] SqliteStatement prepare(const std::string& text, std::size_t& start);
  /// What an ORDER BY names to get a table's rows in table order: its row numbers or its primary key; empty for a view
  /// and where there is no such table.
  [[nodiscard]] std::string tableOrder(const std::string& table);

  /// The error for a result code: the engine's number and text, the file named.
  [[nodiscard]] Error error(int code) const;
  /// Throws Error where the file was replaced or written although the engine had to rely on its standing still.
  void checkUnchanged() const;

 private:
  /// What tells one state of a file from another without reading it.
  struct FileState {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;
    friend bool operator==(const FileState&, const FileState&) = default;
  };

  void open();
  void lockDown(std::chrono::milliseconds busyTimeout);
  void run(const char* sql);
  [[nodiscard]] Error refusal(std::string_view statement) const;
  [[nodiscard]] FileState state() const;

  std::filesystem::path file_;
  ReadOnlyAuthorizer guard_;
  std::optional<FileState> relyingOn_;
  std::unique_ptr<sqlite3, SqliteCloser> handle_;  // last: closed before the guard goes
};

}  // namespace korvel::db
