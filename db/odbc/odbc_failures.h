#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "db/odbc/driver_login.h"
#include "db/odbc/odbc_diagnostics.h"
#include "db/server_directory.h"

namespace korvel::db::odbc {

/// "host:port", as sentences name a server.
[[nodiscard]] std::string shownAddress(const ServerAddress& address);

/// The error of a failed login: the server's number and our message where the user can act on it, otherwise the
/// server's own message; our message for a login that timed out or was interrupted.
[[nodiscard]] Error loginFailure(const std::vector<Diagnostic>& diagnostics, const LoginRequest& request,
                                 bool timedOut);

/// The event of a failed login or command: a login that the server refused, a timeout, a connection that broke; nothing
/// for other failures. `failure` is what the two functions around made of the same diagnostics.
[[nodiscard]] std::optional<ServerEvent> eventOfFailure(const std::vector<Diagnostic>& diagnostics,
                                                        const Error& failure);

/// What a failed command means: the server's first error, else a timeout or a lost connection.
[[nodiscard]] Error commandFailure(const std::vector<Diagnostic>& diagnostics, const ServerAddress& address,
                                   std::chrono::seconds timeout, bool timedOut);

}  // namespace korvel::db::odbc
