#pragma once

#include <string>
#include <string_view>

#include "db/connection.h"
#include "db/net/deadline.h"
#include "db/odbc/driver_login.h"
#include "db/odbc/driver_sockets.h"
#include "db/odbc/driver_watch.h"
#include "db/odbc/odbc_handle.h"

namespace korvel::db::odbc {

/// A connection to a server through the ODBC driver manager.
class OdbcConnection final : public Connection {
 public:
  /// Logs in by `deadline`, with `text` as the driver manager takes it (driverText() of the request); throws Error.
  /// Logins wait for each other.
  OdbcConnection(const LoginRequest& request, const std::string& text, const net::Deadline& deadline);
  ~OdbcConnection() override;
  OdbcConnection(const OdbcConnection&) = delete;
  OdbcConnection& operator=(const OdbcConnection&) = delete;

  void execute(std::string_view commandText, ResultSink& sink) override;

 private:
  void logIn(const LoginRequest& request, const std::string& text);
  void run(std::string_view commandText, ResultSink& sink, DriverWatch& watch);

  ServerAddress address_;
  std::chrono::seconds commandTimeout_;
  DriverSockets sockets_;
  Environment environment_;
  ConnectionHandle connection_;
};

}  // namespace korvel::db::odbc
