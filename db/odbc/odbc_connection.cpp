#include "db/odbc/odbc_connection.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>

#include "base/numbers.h"
#include "base/utf16.h"
#include "db/odbc/driver_configuration.h"
#include "db/odbc/odbc_diagnostics.h"
#include "db/odbc/odbc_failures.h"
#include "db/odbc/odbc_row_reader.h"

namespace korvel::db::odbc {

namespace {

/// How much longer than the driver's own timeout we wait before its connection is shut down: the driver ends a command
/// in better order, but a server that sends half a packet makes it wait twice as long.
constexpr std::chrono::milliseconds driversGrace{500};

/// How soon a login that waits for another one reacts to a stop.
constexpr std::chrono::milliseconds stopInterval{50};

/// How long a driver may take to end a stopped statement.
constexpr std::chrono::seconds timeAfterStop{2};

SQLPOINTER asAttribute(std::chrono::seconds value) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): how ODBC takes numbers
  return reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(value.count()));
}

SQLWCHAR* asWide(std::u16string& text) {
  static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
  return reinterpret_cast<SQLWCHAR*>(text.data());
}

/// Logins read and change what the whole process shares: the environment, and the connections that are open to a port.
std::timed_mutex& loginMutex() {
  static std::timed_mutex mutex;
  return mutex;
}

/// A line that the text does not have is one of a procedure that it called.
Error withLineOf(std::string_view text, const Error& error) {
  const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
  if (!error.line() || *error.line() <= lines) return error;
  return {error.number(), error.description()};
}

/// Pushes the statement's current result; false when the sink or the caller has stopped it.
bool pushResult(SQLHSTMT statement, ResultSink& sink, DriverWatchdog& watch) {
  RowReader reader(statement, watch);
  if (reader.fields().empty()) return true;  // only a row count
  sink.beginResult(reader.fields());
  while (reader.next())
    if (!sink.row(reader.cells()) || !sink.shouldContinue() || watch.stopped()) return false;
  sink.endResult();
  return true;
}

/// "Microsoft SQL Server 15.0.2000". Drivers fill the parts of a version up with zeros, "15.00.2000", which nobody else
/// writes.
std::string productText(const std::string& product, std::string_view version) {
  std::string text = product;
  std::string_view separator = " ";
  while (!version.empty()) {
    const std::size_t end = std::min(version.find('.'), version.size());
    text.append(text.empty() ? "" : separator).append(withoutLeadingZeros(version.substr(0, end)));
    version.remove_prefix(std::min(end + 1, version.size()));
    separator = ".";
  }
  return text;
}

}  // namespace

OdbcConnection::OdbcConnection(const LoginRequest& request, const std::string& text, const net::Deadline& deadline,
                               ServerListener onEvent, std::stop_token stop)
    : onEvent_(std::move(onEvent)),
      stop_(std::move(stop)),
      address_(request.address),
      ticketHolder_(request.ticketHolder),
      commandTimeout_(request.options.commandTimeout),
      environment_(makeEnvironment()),
      connection_(environment_.get()) {
  std::vector<Diagnostic> diagnostics;
  const std::optional<Error> failure = tryLogin(request, text, deadline, diagnostics);
  // A listener may take its time, and others may log in meanwhile.
  tellMessages(diagnostics);
  if (!failure) return;
  tell(eventOfFailure(diagnostics, *failure));
  throw Error(*failure);
}

std::optional<Error> OdbcConnection::tryLogin(const LoginRequest& request, const std::string& text,
                                              const net::Deadline& deadline, std::vector<Diagnostic>& diagnostics) {
  // Waiting for another login does not count as this server's silence.
  const std::chrono::milliseconds left = deadline.left();
  std::unique_lock oneLoginAtATime(loginMutex(), std::defer_lock);
  while (!oneLoginAtATime.try_lock_for(stopInterval))
    if (stop_.stop_requested()) return loginFailure({}, request, true);
  sockets_.expect(address_.port);
  {
    // An incomplete login has nothing to preserve: a stop shuts it down at once.
    const DriverWatchdog watch(sockets_, {left}, stop_);
    try {
      logIn(request, text, left);
      if (onEvent_) diagnostics = diagnosticsOf(SQL_HANDLE_DBC, connection_.get());
    } catch (const DriverFailure& failure) {
      diagnostics = failure.diagnostics;
      return loginFailure(diagnostics, request, watch.expired());
    }
  }
  sockets_.keep();
  return std::nullopt;
}

void OdbcConnection::logIn(const LoginRequest& request, const std::string& text, std::chrono::milliseconds left) {
  SQLHDBC handle = connection_.get();
  SQLSetConnectAttrW(handle, SQL_ATTR_LOGIN_TIMEOUT, asAttribute(std::chrono::ceil<std::chrono::seconds>(left)),
                     SQL_IS_UINTEGER);
  const DriverConfiguration configuration(request);
  std::u16string wide = utf16FromUtf8(text);
  const SQLRETURN result = SQLDriverConnectW(handle, nullptr, asWide(wide), static_cast<SQLSMALLINT>(wide.size()),
                                             nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(result)) throw DriverFailure(diagnosticsOf(SQL_HANDLE_DBC, handle));
}

OdbcConnection::~OdbcConnection() {
  SQLDisconnect(connection_.get());
}

ServerIdentity OdbcConnection::identity() const {
  const auto told = [this](SQLUSMALLINT what) {
    std::array<SQLWCHAR, 256> text{};
    SQLSMALLINT bytes = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(connection_.get(), what, text.data(), sizeof text, &bytes))) return std::string();
    const auto units = std::min(static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR), text.size() - 1);
    return utf8FromUtf16({reinterpret_cast<const char16_t*>(text.data()), units});
  };
  // FreeTDS knows no user, other drivers tell the database's name for him, "dbo" for one.
  return {productText(told(SQL_DBMS_NAME), told(SQL_DBMS_VER)),
          ticketHolder_.empty() ? told(SQL_USER_NAME) : ticketHolder_};
}

void OdbcConnection::execute(std::string_view commandText, ResultSink& sink) {
  runWatched(commandText, [&](DriverWatchdog& watch) { run(commandText, sink, watch); });
}

void OdbcConnection::executeRolledBack(std::string_view commandText, ResultSink& sink) {
  runWatched(commandText, [&](DriverWatchdog& watch) {
    beginTransaction();
    try {
      run(commandText, sink, watch);
    } catch (...) {
      rollBack();
      throw;
    }
    rollBack();
  });
}

void OdbcConnection::beginTransaction() {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): how ODBC takes numbers
  const auto off = reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(SQL_AUTOCOMMIT_OFF));
  check(SQLSetConnectAttrW(connection_.get(), SQL_ATTR_AUTOCOMMIT, off, SQL_IS_UINTEGER), SQL_HANDLE_DBC,
        connection_.get());
}

void OdbcConnection::rollBack() noexcept {
  // Where it fails the connection is broken, and the server rolls back by itself.
  SQLEndTran(SQL_HANDLE_DBC, connection_.get(), SQL_ROLLBACK);
}

template <typename Run>
void OdbcConnection::runWatched(std::string_view commandText, const Run& run) {
  const bool limited = commandTimeout_.count() > 0;
  WatchdogTimeouts timeouts;
  if (limited) timeouts.silence = commandTimeout_ + driversGrace;
  timeouts.afterStop = timeAfterStop;
  DriverWatchdog watch(sockets_, timeouts, stop_);
  if (onEvent_) tell(ServerEvent{ServerEventKind::commandSent, std::string(commandText)});
  try {
    run(watch);
    // A driver whose connection was shut down may take that for the end of the answer.
    if (watch.expired()) throw DriverFailure({});
  } catch (const DriverFailure& failure) {
    const Error error =
        withLineOf(commandText, commandFailure(failure.diagnostics, address_, commandTimeout_, watch.expired()));
    tellMessages(failure.diagnostics);
    tell(eventOfFailure(failure.diagnostics, error));
    throw Error(error);
  }
}

void OdbcConnection::tell(const std::optional<ServerEvent>& event) const {
  if (onEvent_ && event) onEvent_(*event);
}

void OdbcConnection::tellMessages(const std::vector<Diagnostic>& diagnostics) const {
  for (const Diagnostic& said : diagnostics)
    if (said.isInformation())
      tell(ServerEvent{ServerEventKind::serverMessage, said.message, said.severity, said.number, said.messageState});
}

void OdbcConnection::run(std::string_view commandText, ResultSink& sink, DriverWatchdog& watch) {
  if (!sink.shouldContinue()) return;
  const Statement statement(connection_.get());
  SQLHSTMT handle = statement.get();
  // From the watching thread: SQLCancel reaches a driver that is busy inside a call.
  const DriverWatchdog::Cancelling cancelling(watch, [handle] { SQLCancel(handle); });
  SQLSetStmtAttrW(handle, SQL_ATTR_QUERY_TIMEOUT, asAttribute(commandTimeout_), SQL_IS_UINTEGER);
  std::u16string text = utf16FromUtf8(commandText);
  SQLRETURN result =
      watch.during([&] { return SQLExecDirectW(handle, asWide(text), static_cast<SQLINTEGER>(text.size())); });
  // A statement that has changed no row may answer so; its batch goes on behind it.
  const auto nextResult = [&] { return SQLMoreResults(handle); };
  if (result == SQL_NO_DATA) result = watch.during(nextResult);
  while (result != SQL_NO_DATA) {
    check(result, SQL_HANDLE_STMT, handle);
    if (onEvent_ && result == SQL_SUCCESS_WITH_INFO) tellMessages(diagnosticsOf(SQL_HANDLE_STMT, handle));
    watch.noteActivity();
    if (!pushResult(handle, sink, watch) || !sink.shouldContinue()) {
      watch.discardRest();
      SQLCancel(handle);
      return;
    }
    result = watch.during(nextResult);
  }
}

}  // namespace korvel::db::odbc
