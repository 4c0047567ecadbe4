#include "db/embedded/sqlite_database.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "db/embedded/audit_statements.h"
#include "settings/string_table.h"

namespace korvel::db {
namespace {

std::filesystem::path beside(const std::filesystem::path& file, const char* suffix) {
  std::filesystem::path neighbour = file;
  neighbour += suffix;
  return neighbour;
}

/// Whether the file's header says that changes are kept in a write-ahead log beside it.
bool usesWriteAheadLog(const std::filesystem::path& file) {
  constexpr std::size_t writeVersion = 18;
  constexpr std::size_t readVersion = 19;
  constexpr char writeAheadLog = 2;
  std::array<char, readVersion + 1> header{};
  std::ifstream stream(extendedLengthPath(file), std::ios::binary);
  stream.read(header.data(), header.size());
  return stream && (header[writeVersion] == writeAheadLog || header[readVersion] == writeAheadLog);
}

std::string fileUri(const std::filesystem::path& file, std::string_view parameters) {
  // Not the separators: two of them at the beginning would be taken for those of a server's name.
  constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._";
  std::string uri = "file:";
  for (const char c : utf8FromPath(extendedLengthPath(file))) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain.find(c) != std::string_view::npos)
      uri += c;
    else
      (uri += '%').append({hexDigits[byte >> 4U], hexDigits[byte & 15U]});
  }
  return uri.append(parameters);
}

/// The first word of a statement, in capitals; comments before it are skipped.
std::string firstWord(std::string_view statement) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  std::string word;
  while (word.empty() && !statement.empty()) {
    std::size_t skipped = 1;
    if (statement.starts_with("--"))
      skipped = statement.find('\n');
    else if (statement.starts_with("/*"))
      skipped = statement.find("*/");
    else
      for (std::size_t at = 0; at < statement.size() && isLetter(statement[at]); ++at)
        word += static_cast<char>(statement[at] & ~0x20);  // the capital of an ASCII letter
    statement.remove_prefix(std::min(skipped, statement.size()));
  }
  return word;
}

}  // namespace

void SqliteCloser::operator()(sqlite3* handle) const noexcept {
  sqlite3_close_v2(handle);
}
void SqliteFinalizer::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, std::chrono::milliseconds busyTimeout) : file_(file) {
  std::error_code failure;
  // Without a working folder a relative path leads nowhere; it is said below.
  file_ = absolutePath(file, failure);
  const auto status = files::status(file_, failure);
  if (status.type() == std::filesystem::file_type::not_found)
    throw settings::localizedError(SQLITE_CANTOPEN, "db.fileMissing", {utf8FromPath(file_)});
  // A pipe, for one, would be waited for without end.
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    throw settings::localizedError(SQLITE_CANTOPEN, "db.notAFile", {utf8FromPath(file_)});
  open();
  lockDown(busyTimeout);
}

void SqliteDatabase::open() {
  std::string name = utf8FromPath(extendedLengthPath(file_));
  int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX;
  const FileState before = state();
  if (usesWriteAheadLog(file_)) {
    // Opened plainly, such a database makes files beside itself even for a reader.
    const std::filesystem::path log = beside(file_, "-wal");
    std::error_code missing;
    const auto logSize = files::size(log, missing);
    const bool logIsEmpty = missing || logSize == 0;
    if (logIsEmpty)
      relyingOn_ = before;  // the log holds nothing; checkUnchanged() verifies that the file was not written meanwhile
    else if (!std::filesystem::exists(files::status(beside(file_, "-shm"), missing)))
      throw settings::localizedError(SQLITE_READONLY_RECOVERY, "db.logUnread",
                                     {utf8FromPath(file_), utf8FromPath(log)});
    name = fileUri(file_, logIsEmpty ? "?mode=ro&immutable=1" : "?mode=ro&readonly_shm=1");
    flags |= SQLITE_OPEN_URI;
  }
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
  handle_.reset(opened);
  if (code != SQLITE_OK) throw error(code);
}

void SqliteDatabase::setBusyTimeout(std::chrono::milliseconds busyTimeout) noexcept {
  sqlite3_busy_timeout(handle_.get(), static_cast<int>(busyTimeout.count()));
}

void SqliteDatabase::lockDown(std::chrono::milliseconds busyTimeout) {
  sqlite3* const handle = handle_.get();
  sqlite3_extended_result_codes(handle, 1);
  setBusyTimeout(busyTimeout);

  struct Switch {
    int option;
    int value;
  };
  constexpr std::array switches = {
      Switch{SQLITE_DBCONFIG_DEFENSIVE, 1},
      Switch{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
      Switch{SQLITE_DBCONFIG_WRITABLE_SCHEMA, 0},
      Switch{SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
      Switch{SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0},
      Switch{SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
      Switch{SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1},
      // Double quotes enclose names, as on the server: a misspelt column is an error, not a constant.
      Switch{SQLITE_DBCONFIG_DQS_DML, 0},
  };
  for (const Switch& each : switches) {
    int now = each.value;
    const int code = sqlite3_db_config(handle, each.option, each.value, &now);
    if (code != SQLITE_OK || now != each.value)
      throw Error(SQLITE_ERROR, "this SQLite cannot be locked down for reading audit databases");
  }
  // Texts written for the server may name the schema: dbo.Korvel_Audit_Trails.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_MAINDBNAME, "dbo");
  sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
  run("PRAGMA query_only=ON");
  run("PRAGMA temp_store=MEMORY");
  run("PRAGMA cell_size_check=ON");
  // No memory mapping: a file that another program cuts short would end the process instead of giving an error.
  run("PRAGMA mmap_size=0");
  run("SELECT count(*) FROM sqlite_schema");
  if (const int code = addStoredTimeFunction(handle); code != SQLITE_OK) throw error(code);
  guard_.install(handle);
}

void SqliteDatabase::run(const char* sql) {
  const int code = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw error(code);
}

SqliteStatement SqliteDatabase::prepare(const std::string& text, std::size_t& start) {
  constexpr std::size_t longestText = 1'000'000'000;
  if (text.size() > longestText) throw error(SQLITE_TOOBIG);
  guard_.forget();
  sqlite3_stmt* compiled = nullptr;
  const char* rest = nullptr;
  // The length counts the closing NUL: without it SQLite would copy the whole text for every statement.
  const int code = sqlite3_prepare_v3(handle_.get(), text.data() + start, static_cast<int>(text.size() - start + 1), 0,
                                      &compiled, &rest);
  SqliteStatement statement(compiled);
  if ((code & 0xff) == SQLITE_AUTH || (code == SQLITE_ERROR && !guard_.refused().empty()))
    throw refusal(std::string_view(text).substr(start));
  if (code != SQLITE_OK) {
    const Error failure = error(code);
    const int offset = sqlite3_error_offset(handle_.get());
    if (offset < 0) throw failure;
    const auto position = text.begin() + static_cast<std::ptrdiff_t>(start) + offset;
    throw Error(failure.number(), failure.description(),
                1 + static_cast<int>(std::count(text.begin(), position, '\n')));
  }
  if (statement && sqlite3_stmt_readonly(compiled) == 0) throw refusal(std::string_view(text).substr(start));
  if (statement && sqlite3_bind_parameter_count(compiled) > 0) {
    const char* const name = sqlite3_bind_parameter_name(compiled, 1);
    throw settings::localizedError(SQLITE_ERROR, "db.parameterWithoutValue",
                                   {name == nullptr ? "?" : name, utf8FromPath(file_)});
  }
  start = static_cast<std::size_t>(rest - text.data());
  return statement;
}

std::string SqliteDatabase::tableOrder(const std::string& table) {
  constexpr const char* rowNumber = "_rowid_";
  if (sqlite3_table_column_metadata(handle_.get(), nullptr, table.c_str(), rowNumber, nullptr, nullptr, nullptr,
                                    nullptr, nullptr) == SQLITE_OK)
    return rowNumber;
  std::string order;
  std::size_t start = 0;
  const SqliteStatement key = prepare(
      "SELECT group_concat(name) FROM (SELECT '\"' || replace(name, '\"', '\"\"') || '\"' AS name FROM "
      "pragma_table_info('" +
          table + "') WHERE pk > 0 ORDER BY pk)",
      start);
  if (sqlite3_step(key.get()) == SQLITE_ROW)
    if (const auto* const columns = sqlite3_column_text(key.get(), 0)) order = reinterpret_cast<const char*>(columns);
  return order;
}

Error SqliteDatabase::refusal(std::string_view statement) const {
  std::string what = guard_.refused().empty() ? firstWord(statement) : guard_.refused();
  if (what.empty()) what = "this";
  return settings::localizedError(SQLITE_AUTH, "db.readOnly", {what, utf8FromPath(file_)});
}

Error SqliteDatabase::error(int code) const {
  // What looks like damage may be another program's writing under a file that was taken to stand still.
  checkUnchanged();
  // Before extended codes are switched on, the call itself gives only the first eight bits.
  const bool fromHandle = handle_ != nullptr && (sqlite3_extended_errcode(handle_.get()) & 0xff) == (code & 0xff);
  const int number = fromHandle ? sqlite3_extended_errcode(handle_.get()) : code;
  if ((number & 0xff) == SQLITE_AUTH) return refusal({});
  if ((number & 0xff) == SQLITE_READONLY)
    return settings::localizedError(number, "db.changeInterrupted", {utf8FromPath(file_)});
  return {number, std::string(fromHandle ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code)) + " (" +
                      utf8FromPath(file_) + ")"};
}

SqliteDatabase::FileState SqliteDatabase::state() const {
  std::error_code failure;
  FileState now;
  now.size = files::size(file_, failure);
  now.written = files::lastWriteTime(file_, failure);
  return now;
}

void SqliteDatabase::checkUnchanged() const {
  if (relyingOn_ && *relyingOn_ != state())
    throw settings::localizedError(SQLITE_BUSY_SNAPSHOT, "db.changedMeanwhile", {utf8FromPath(file_)});
}

}  // namespace korvel::db
