#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace korvel::bench {

struct CloseConnection {
  void operator()(sqlite3* connection) const noexcept { sqlite3_close(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

/// The cost of SQLite's interface alone, as the reference of the other figures.
class BareSqlite {
 public:
  explicit BareSqlite(const std::filesystem::path& file);

  /// Steps through the whole answer of one statement without reading a value; returns the number of rows.
  std::size_t stepThrough(const std::string& statement);
  /// Steps through the answer and reads every value as text; returns the sum of their bytes.
  std::size_t textBytes(const std::string& statement);
  /// Steps through the answer and copies every value, as text, into one buffer that is reused: the minimum work of
  /// a reader that keeps the values. Values are fetched in the cheapest way. Returns the sum of
  /// their bytes.
  std::size_t copyOut(const std::string& statement);

 private:
  Connection connection_;
};

/// Runs a statement that changes the database, on a connection of its own.
void runOn(const std::filesystem::path& file, const std::string& statement);

}  // namespace korvel::bench
