#pragma once

#include <string>

#include "db/odbc/connection_options.h"
#include "db/odbc/odbc_driver.h"
#include "db/odbc/server_address.h"

namespace korvel::db::odbc {

/// The parameters of one login.
struct LoginRequest {
  Driver driver;
  ServerAddress address;
  std::string database;          ///< empty for the login's default database
  std::string servicePrincipal;  ///< "MSSQLSvc/host:port"
  std::string ticketHolder{};    ///< whose ticket was acquired; empty where the system does that
  ConnectionOptions options;
};

/// The text that the driver manager connects with: the running user's own login, never a name or a password. The one
/// place that knows the words of each driver. Values stand in braces, so that none can add words of its own; throws
/// Error for one that braces cannot hold, for authorities that the driver would ignore, and for a certificate that it
/// would not check.
[[nodiscard]] std::string driverText(const LoginRequest& request);
/// The same on a system of these drivers.
[[nodiscard]] std::string driverTextOn(const DriverPlatform& platform, const LoginRequest& request);

/// Whether this driver checks certificates only when a configuration file tells it to.
[[nodiscard]] bool needsConfiguration(const LoginRequest& request);
/// Whether the driver itself refuses a server whose certificate is not to be trusted.
[[nodiscard]] bool checksCertificates(const LoginRequest& request);
/// The text of that file for FreeTDS: address, encryption, and the certificates to trust, in a section named after the
/// host. Throws Error for a file name that could add lines of its own.
[[nodiscard]] std::string freeTdsConfiguration(const LoginRequest& request);

}  // namespace korvel::db::odbc
