#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"
#include "db/net/deadline.h"
#include "db/odbc/driver_login.h"
#include "db/odbc/driver_sockets.h"
#include "db/odbc/driver_watchdog.h"
#include "db/odbc/odbc_diagnostics.h"
#include "db/odbc/odbc_handle.h"
#include "db/server_directory.h"

namespace korvel::db::odbc {

/// A connection to a server through the ODBC driver manager.
class OdbcConnection final : public Connection {
 public:
  /// Logs in by `deadline`, with `text` as the driver manager takes it (driverText() of the request); throws Error.
  /// Logins wait for each other. `onEvent`, where there is one, is told of commands, messages and failures within the
  /// calls in which they happen. A `stop` ends the login at once, and a command as soon as the driver lets it, at the
  /// latest when the connection is given up: two seconds later.
  OdbcConnection(const LoginRequest& request, const std::string& text, const net::Deadline& deadline,
                 ServerListener onEvent = {}, std::stop_token stop = {});
  ~OdbcConnection() override;
  OdbcConnection(const OdbcConnection&) = delete;
  OdbcConnection& operator=(const OdbcConnection&) = delete;

  void execute(std::string_view commandText, ResultSink& sink) override;
  void executeRolledBack(std::string_view commandText, ResultSink& sink) override;
  [[nodiscard]] ServerIdentity identity() const override;

 private:
  /// Logs in, alone in the process. Gives what failed, where something did; `diagnostics` get what was said.
  std::optional<Error> tryLogin(const LoginRequest& request, const std::string& text, const net::Deadline& deadline,
                                std::vector<Diagnostic>& diagnostics);
  void logIn(const LoginRequest& request, const std::string& text, std::chrono::milliseconds left);
  template <typename Run>
  void runWatched(std::string_view commandText, const Run& run);
  void run(std::string_view commandText, ResultSink& sink, DriverWatchdog& watch);
  void beginTransaction();
  void rollBack() noexcept;

  void tell(const std::optional<ServerEvent>& event) const;
  /// Tells of what the server said beside its answer.
  void tellMessages(const std::vector<Diagnostic>& diagnostics) const;

  ServerListener onEvent_;
  std::stop_token stop_;
  ServerAddress address_;
  std::string ticketHolder_;
  std::chrono::seconds commandTimeout_;
  DriverSockets sockets_;
  Environment environment_;
  ConnectionHandle connection_;
};

}  // namespace korvel::db::odbc
