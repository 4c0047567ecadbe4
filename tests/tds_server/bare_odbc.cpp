#include "tests/tds_server/bare_odbc.h"

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <stdexcept>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test {
namespace {

static_assert(sizeof(SQLWCHAR) == 2);

std::string fromWide(const SQLWCHAR* text, std::size_t units) {
  return tds::fromUtf16({reinterpret_cast<const char*>(text), units * sizeof(SQLWCHAR)});
}

std::vector<SQLWCHAR> toWide(const std::string& utf8) {
  const std::string bytes = tds::toUtf16(utf8);
  std::vector<SQLWCHAR> wide(bytes.size() / 2 + 1, 0);
  std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(wide.data()));
  return wide;
}

Diagnostics diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle) {
  Diagnostics lines;
  std::array<SQLWCHAR, 6> state{};
  std::array<SQLWCHAR, 2048> text{};
  for (SQLSMALLINT number = 1;; ++number) {
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const SQLRETURN result = SQLGetDiagRecW(kind, handle, number, state.data(), &native, text.data(),
                                            static_cast<SQLSMALLINT>(text.size()), &length);
    if (!SQL_SUCCEEDED(result)) return lines;
    std::string message = fromWide(text.data(), static_cast<std::size_t>(length));
    // Drivers put their names in brackets before the text.
    while (message.starts_with('[')) message.erase(0, message.find(']') + 1);
    lines.push_back(fromWide(state.data(), 5) + " " + std::to_string(native) + " " + message);
  }
}

SQLHANDLE newHandle(SQLSMALLINT kind, SQLHANDLE parent) {
  SQLHANDLE handle = SQL_NULL_HANDLE;
  if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &handle))) throw std::runtime_error("no ODBC handle");
  return handle;
}

/// ODBC passes numeric attributes as pointers.
SQLPOINTER number(std::uintptr_t value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr): ODBC's interface
}

SQLHANDLE newEnvironment() {
  SQLHANDLE environment = newHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
  SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), 0);
  return environment;
}

}  // namespace

std::optional<std::string> installedFreeTds() {
  SQLHANDLE environment = newEnvironment();
  std::optional<std::string> found;
  std::array<SQLCHAR, 256> name{};
  std::array<SQLCHAR, 1024> attributes{};
  SQLSMALLINT length = 0;
  SQLSMALLINT ignored = 0;
  for (SQLUSMALLINT way = SQL_FETCH_FIRST;
       !found && SQL_SUCCEEDED(SQLDrivers(environment, way, name.data(), static_cast<SQLSMALLINT>(name.size()), &length,
                                          attributes.data(), static_cast<SQLSMALLINT>(attributes.size()), &ignored));
       way = SQL_FETCH_NEXT) {
    std::string text(reinterpret_cast<const char*>(name.data()), static_cast<std::size_t>(length));
    if (text.find("FreeTDS") != std::string::npos) found = std::move(text);
  }
  SQLFreeHandle(SQL_HANDLE_ENV, environment);
  return found;
}

std::string freeTdsString(const std::string& driver, std::uint16_t port, const std::string& more) {
  return "Driver={" + driver + "};Server=127.0.0.1;Port=" + std::to_string(port) + ";TDS_Version=7.4;" + more;
}

/// One statement's handle and what has been read from it.
class BareOdbc::Statement {
 public:
  Statement(SQLHANDLE connection, unsigned timeout) : handle_(newHandle(SQL_HANDLE_STMT, connection)) {
    if (timeout != 0) SQLSetStmtAttr(handle_, SQL_ATTR_QUERY_TIMEOUT, number(timeout), 0);
  }
  ~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, handle_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  [[nodiscard]] SQLHANDLE handle() const { return handle_; }
  std::vector<std::string> lines;

  /// Adds the diagnostics of a call; true where it succeeded. A message behind the last row comes with NO_DATA.
  bool good(SQLRETURN result) {
    if (broken_ || result == SQL_SUCCESS) return !broken_;
    for (const std::string& text : diagnosticsOf(SQL_HANDLE_STMT, handle_)) {
      lines.push_back("! " + text);
      broken_ |= text.find(" 20017 ") != std::string::npos;
    }
    return SQL_SUCCEEDED(result) && !broken_;
  }

  void readAll(SQLRETURN first) {
    for (bool more = good(first); more; more = good(SQLMoreResults(handle_))) {
      SQLSMALLINT columns = 0;
      SQLNumResultCols(handle_, &columns);
      if (columns > 0) {
        lines.push_back(header(columns));
        while (good(SQLFetch(handle_))) lines.push_back(row(columns));
        continue;
      }
      SQLLEN count = -1;
      SQLRowCount(handle_, &count);
      if (count >= 0) lines.push_back("(" + std::to_string(count) + ")");
    }
  }

  std::optional<std::string> cell(SQLUSMALLINT column) {
    std::string wide;  // a chunk may end inside a surrogate pair, so all chunks are converted together
    for (;;) {
      SQLLEN indicator = 0;
      const SQLRETURN result = SQLGetData(handle_, column, SQL_C_WCHAR, buffer_.data(),
                                          static_cast<SQLLEN>(buffer_.size() * sizeof(SQLWCHAR)), &indicator);
      if (!SQL_SUCCEEDED(result)) return good(result) ? tds::fromUtf16(wide) : "?";
      if (indicator == SQL_NULL_DATA) return std::nullopt;
      // FreeTDS reports some complete values as truncated; the indicator has the true length.
      const bool whole =
          result == SQL_SUCCESS || (indicator >= 0 && static_cast<std::size_t>(indicator) < sizeof buffer_);
      const std::size_t units = whole ? static_cast<std::size_t>(indicator) / sizeof(SQLWCHAR) : buffer_.size() - 1;
      wide.append(reinterpret_cast<const char*>(buffer_.data()), units * sizeof(SQLWCHAR));
      if (whole) return tds::fromUtf16(wide);
    }
  }

 private:
  std::string header(SQLSMALLINT columns) {
    std::string line = "[";
    for (SQLUSMALLINT i = 1; i <= columns; ++i) {
      SQLSMALLINT length = 0;
      SQLColAttributeW(handle_, i, SQL_DESC_NAME, buffer_.data(),
                       static_cast<SQLSMALLINT>(buffer_.size() * sizeof(SQLWCHAR)), &length, nullptr);
      line += (i > 1 ? ", " : "") + fromWide(buffer_.data(), static_cast<std::size_t>(length) / 2);
    }
    return line + "]";
  }

  std::string row(SQLSMALLINT columns) {
    std::string line;
    for (SQLUSMALLINT i = 1; i <= columns; ++i) line += (i > 1 ? ", " : "") + cell(i).value_or("NULL");
    return line;
  }

  SQLHANDLE handle_;
  /// The connection is broken. FreeTDS may report that as success with a warning and then return empty results.
  bool broken_ = false;
  std::array<SQLWCHAR, 4096> buffer_{};
};

BareOdbc::BareOdbc() : environment_(newEnvironment()), connection_(newHandle(SQL_HANDLE_DBC, environment_)) {}

BareOdbc::~BareOdbc() {
  disconnect();
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

Diagnostics BareOdbc::connect(const std::string& connectionString) {
  std::vector<SQLWCHAR> text = toWide(connectionString);
  connected_ = SQL_SUCCEEDED(
      SQLDriverConnectW(connection_, nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT));
  return connected_ ? Diagnostics() : diagnosticsOf(SQL_HANDLE_DBC, connection_);
}

void BareOdbc::disconnect() {
  if (connected_) SQLDisconnect(connection_);
  connected_ = false;
}

std::vector<std::string> BareOdbc::execute(const std::string& text) {
  Statement statement(connection_, timeout_);
  std::vector<SQLWCHAR> wide = toWide(text);
  statement.readAll(SQLExecDirectW(statement.handle(), wide.data(), SQL_NTS));
  return statement.lines;
}

std::vector<std::string> BareOdbc::prepareAndExecute(const std::string& text) {
  Statement statement(connection_, timeout_);
  std::vector<SQLWCHAR> wide = toWide(text);
  if (statement.good(SQLPrepareW(statement.handle(), wide.data(), SQL_NTS)))
    statement.readAll(SQLExecute(statement.handle()));
  return statement.lines;
}

void BareOdbc::executeAndLeave(const std::string& text, std::size_t rows, const std::function<void()>& then) {
  Statement statement(connection_, timeout_);
  std::vector<SQLWCHAR> wide = toWide(text);
  SQLExecDirectW(statement.handle(), wide.data(), SQL_NTS);
  for (std::size_t i = 0; i < rows; ++i) SQLFetch(statement.handle());
  then();
  SQLCancel(statement.handle());
}

std::size_t BareOdbc::executeAndCount(const std::string& text) {
  Statement statement(connection_, timeout_);
  std::vector<SQLWCHAR> wide = toWide(text);
  if (!SQL_SUCCEEDED(SQLExecDirectW(statement.handle(), wide.data(), SQL_NTS))) return 0;
  SQLSMALLINT columns = 0;
  SQLNumResultCols(statement.handle(), &columns);
  std::size_t cells = 0;
  std::array<SQLWCHAR, 4096> buffer{};
  while (SQL_SUCCEEDED(SQLFetch(statement.handle()))) {
    for (SQLUSMALLINT i = 1; i <= columns; ++i, ++cells) {
      SQLLEN indicator = 0;
      SQLGetData(statement.handle(), i, SQL_C_WCHAR, buffer.data(),
                 static_cast<SQLLEN>(buffer.size() * sizeof(SQLWCHAR)), &indicator);
    }
  }
  return cells;
}

}  // namespace korvel::test
