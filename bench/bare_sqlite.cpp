#include "bench/bare_sqlite.h"

#include <cstring>
#include <stdexcept>
#include <vector>

#include "db/embedded/row_values.h"

namespace korvel::bench {

namespace {

struct Finalize {
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

Connection opened(const std::filesystem::path& file, int access) {
  sqlite3* handle = nullptr;
  const int status = sqlite3_open_v2(file.c_str(), &handle, access | SQLITE_OPEN_NOMUTEX, nullptr);
  Connection connection{handle};
  if (status != SQLITE_OK) throw std::runtime_error("cannot open " + file.string());
  return connection;
}

Statement prepared(sqlite3* connection, const std::string& text) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection, text.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(connection));
  return Statement{statement};
}

}  // namespace

BareSqlite::BareSqlite(const std::filesystem::path& file) : connection_(opened(file, SQLITE_OPEN_READONLY)) {}

std::size_t BareSqlite::stepThrough(const std::string& statement) {
  const Statement rows = prepared(connection_.get(), statement);
  std::size_t count = 0;
  while (sqlite3_step(rows.get()) == SQLITE_ROW) ++count;
  return count;
}

std::size_t BareSqlite::textBytes(const std::string& statement) {
  const Statement rows = prepared(connection_.get(), statement);
  const int columns = sqlite3_column_count(rows.get());
  std::size_t bytes = 0;
  while (sqlite3_step(rows.get()) == SQLITE_ROW)
    for (int column = 0; column < columns; ++column)
      if (sqlite3_column_text(rows.get(), column) != nullptr)
        bytes += static_cast<std::size_t>(sqlite3_column_bytes(rows.get(), column));
  return bytes;
}

std::size_t BareSqlite::copyOut(const std::string& statement) {
  constexpr std::size_t bufferBytes = std::size_t{128} * 1024;
  const Statement rows = prepared(connection_.get(), statement);
  const auto columns = static_cast<std::size_t>(sqlite3_column_count(rows.get()));
  db::RowValues values(rows.get(), columns);
  std::vector<char> buffer(bufferBytes);
  std::size_t used = 0;
  std::size_t bytes = 0;
  while (sqlite3_step(rows.get()) == SQLITE_ROW) {
    values.read();
    for (std::size_t column = 0; column < columns; ++column) {
      sqlite3_value* const value = values.value(column);
      const unsigned char* const text = sqlite3_value_text(value);
      if (text == nullptr) continue;
      const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
      if (size > buffer.size() - used) used = 0;
      if (size > buffer.size()) buffer.resize(size);
      std::memcpy(buffer.data() + used, text, size);
      used += size;
      bytes += size;
    }
  }
  return bytes;
}

void runOn(const std::filesystem::path& file, const std::string& statement) {
  const Connection connection = opened(file, SQLITE_OPEN_READWRITE);
  if (sqlite3_exec(connection.get(), statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
    throw std::runtime_error(sqlite3_errmsg(connection.get()));
}

}  // namespace korvel::bench
