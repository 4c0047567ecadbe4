#include "db/odbc/odbc_diagnostics.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "base/utf16.h"

namespace korvel::db::odbc {

namespace {

// Extensions that drivers for this server share.
constexpr SQLSMALLINT diagnosticMessageState = -1150;
constexpr SQLSMALLINT diagnosticSeverity = -1151;
constexpr SQLSMALLINT diagnosticProcedureName = -1153;
constexpr SQLSMALLINT diagnosticServerLine = -1154;  // of the statement, or of the procedure that it called

/// What FreeTDS says of a connection that broke: reading or writing failed, the end came too early, the answer makes no
/// sense, the connection is dead.
constexpr std::array<std::int32_t, 6> lostConnectionNumbers = {20003, 20004, 20006, 20017, 20020, 20047};

/// "[vendor][component]text" without the names in brackets; what the server says may begin with brackets of its own.
std::string_view withoutComponents(std::string_view message) {
  constexpr std::string_view server = "[SQL Server]";
  while (message.starts_with('[')) {
    const auto end = message.find(']');
    if (end == std::string_view::npos) break;
    const bool last = message.substr(0, end + 1) == server;
    message.remove_prefix(end + 1);
    if (last) break;
  }
  return message;
}

std::u16string_view units(const std::vector<SQLWCHAR>& buffer, SQLSMALLINT length) {
  static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
  const auto most = buffer.empty() ? std::size_t{0} : buffer.size() - 1;
  const auto size = std::min(most, static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)));
  return {reinterpret_cast<const char16_t*>(buffer.data()), size};
}

/// A number of the server's message; nothing where the driver does not tell it.
std::optional<int> serversNumber(SQLSMALLINT handleType, SQLHANDLE handle, SQLSMALLINT record, SQLSMALLINT field) {
  SQLINTEGER number = 0;
  SQLSMALLINT ignored = 0;
  // The length of the number, not the marker for numbers, is what FreeTDS takes behind this driver manager.
  const auto result =
      SQLGetDiagFieldW(handleType, handle, record, field, &number, static_cast<SQLSMALLINT>(sizeof number), &ignored);
  return SQL_SUCCEEDED(result) ? std::optional<int>(number) : std::nullopt;
}

/// Whether the message came out of a procedure, where the driver tells it: lines are the procedure's own then.
bool tellsOfProcedure(SQLSMALLINT handleType, SQLHANDLE handle, SQLSMALLINT record) {
  std::array<SQLWCHAR, 130> name{};
  SQLSMALLINT ignored = 0;
  const auto result = SQLGetDiagFieldW(handleType, handle, record, diagnosticProcedureName, name.data(),
                                       static_cast<SQLSMALLINT>(sizeof name), &ignored);
  return SQL_SUCCEEDED(result) && name.front() != 0;
}

}  // namespace

bool Diagnostic::tellsOfLostConnection() const {
  if (state.starts_with("08")) return true;
  if (state == "HY000" && number == 0) return message == "Unknown error";
  return state == "01000" &&
         std::find(lostConnectionNumbers.begin(), lostConnectionNumbers.end(), number) != lostConnectionNumbers.end();
}

std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT handleType, SQLHANDLE handle) {
  std::vector<Diagnostic> diagnostics;
  std::vector<SQLWCHAR> message(1024);
  for (SQLSMALLINT record = 1;; ++record) {
    std::array<SQLWCHAR, 6> state{};
    SQLINTEGER number = 0;
    SQLSMALLINT length = 0;
    auto result = SQLGetDiagRecW(handleType, handle, record, state.data(), &number, message.data(),
                                 static_cast<SQLSMALLINT>(message.size()), &length);
    if (result == SQL_SUCCESS_WITH_INFO && static_cast<std::size_t>(length) >= message.size()) {
      message.resize(static_cast<std::size_t>(length) + 1);
      result = SQLGetDiagRecW(handleType, handle, record, state.data(), &number, message.data(),
                              static_cast<SQLSMALLINT>(message.size()), &length);
    }
    if (!SQL_SUCCEEDED(result)) return diagnostics;
    Diagnostic diagnostic;
    diagnostic.state = utf8FromUtf16({reinterpret_cast<const char16_t*>(state.data()), 5});
    diagnostic.number = number;
    diagnostic.message = withoutComponents(utf8FromUtf16(units(message, length)));
    if (number != 0) {
      const auto severity = serversNumber(handleType, handle, record, diagnosticSeverity);
      const auto serversState = serversNumber(handleType, handle, record, diagnosticMessageState);
      // FreeTDS does not know the field of the severity, and tells it in that of the state.
      diagnostic.severity = severity.value_or(serversState.value_or(0));
      diagnostic.messageState = severity ? serversState.value_or(0) : 0;
      if (handleType == SQL_HANDLE_STMT)
        diagnostic.line = serversNumber(handleType, handle, record, diagnosticServerLine);
      if (diagnostic.line.value_or(0) <= 0 || tellsOfProcedure(handleType, handle, record)) diagnostic.line.reset();
    }
    diagnostics.push_back(std::move(diagnostic));
  }
}

void check(SQLRETURN result, SQLSMALLINT handleType, SQLHANDLE handle) {
  if (result == SQL_INVALID_HANDLE) throw DriverFailure({});
  if (result == SQL_ERROR) throw DriverFailure(diagnosticsOf(handleType, handle));
  if (result != SQL_SUCCESS_WITH_INFO) return;
  auto diagnostics = diagnosticsOf(handleType, handle);
  if (std::any_of(diagnostics.begin(), diagnostics.end(), [](const auto& d) { return d.tellsOfLostConnection(); }))
    throw DriverFailure(std::move(diagnostics));
}

}  // namespace korvel::db::odbc
