#pragma once

#include <sql.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace korvel::db::odbc {

/// One message of the driver or the server.
struct Diagnostic {
  std::string state;        ///< five characters
  std::int32_t number = 0;  ///< the server's own number, 0 for most of the driver's messages
  std::string message;      ///< without the bracketed names of the components that passed it on
  std::optional<int> line;  ///< of the command's text, as far as the driver tells that from a procedure's
  int severity = 0;         ///< 0 where the driver does not tell
  int messageState = 0;     ///< the server's; 0 where the driver does not tell

  /// Warnings, PRINT texts and changes of context: not errors.
  [[nodiscard]] bool isInformation() const { return state.starts_with("01") && !tellsOfLostConnection(); }
  /// Whether the connection is gone; FreeTDS says so in what looks like a warning.
  [[nodiscard]] bool tellsOfLostConnection() const;
  [[nodiscard]] bool tellsOfTimeout() const { return state.starts_with("HYT"); }
};

/// All messages that the last call on the handle left.
[[nodiscard]] std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT handleType, SQLHANDLE handle);

/// A call failed. Stays inside this folder: the message to the user depends on the operation.
class DriverFailure : public std::exception {
 public:
  explicit DriverFailure(std::vector<Diagnostic> found) : diagnostics(std::move(found)) {}
  std::vector<Diagnostic> diagnostics;
};

/// Throws DriverFailure for a call that failed, also for one that calls the loss of the connection a success.
void check(SQLRETURN result, SQLSMALLINT handleType, SQLHANDLE handle);

}  // namespace korvel::db::odbc
