#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "db/connection.h"
#include "db/discovery/resolution_client.h"
#include "db/net/deadline.h"
#include "db/net/pre_login.h"
#include "db/net/socket.h"
#include "db/net/tls_handshake.h"
#include "db/odbc/connection_options.h"
#include "db/odbc/driver_login.h"
#include "db/odbc/login_ticket.h"
#include "db/odbc/server_address.h"
#include "db/server_directory.h"

namespace korvel::db::odbc {

/// What the way to a server depends on.
struct ServerAccess {
  ConnectionOptions options;
  ResolutionClient resolver;
  // Tests without a login service put something else in the place of these two.
  std::function<Ticket(const std::string& servicePrincipal, const net::Deadline&)> acquireTicket = odbc::acquireTicket;
  std::function<std::string(const LoginRequest&)> driverText = odbc::driverText;
  /// Receives the events of the connections that are opened, on the thread that uses them.
  ServerListener onEvent;
  /// Ends what is under way on the connections that are opened.
  std::stop_token stop;
};

/// The running user's own access, with what the settings store adjusts. Throws Error for a store that cannot be read.
[[nodiscard]] ServerAccess userAccess();

/// The steps to a connected server, each with its own message when it fails (all throw Error). Checking a server
/// reports the steps one by one; connecting takes them only where the driver has failed, because drivers report all
/// failures with the same message. One timeout holds for all steps together, from the construction on.
class ServerConnector {
 public:
  ServerConnector(std::string server, ServerAccess access);

  /// Reads the server's name, asks the host for the port of a named instance, and looks up the host's addresses.
  void resolveServer();
  /// Connects to the port.
  void connectPort();
  /// Exchanges the pre-login packets; drivers would wait for the server's answer without a timeout.
  void exchangePreLogin();
  /// Performs the TLS handshake and checks the certificate, where the options ask for it.
  void checkEncryption();
  /// Acquires the running user's ticket, where the system does not do that itself.
  Ticket acquireTicket();
  /// Logs in. `database` may be empty.
  [[nodiscard]] std::unique_ptr<Connection> logIn(const std::string& database);

  /// All of it, with the driver's connection as the only one where everything goes well; after resolveServer(). A
  /// driver that fails without a message of the server leaves time for the steps, which then find the reason.
  [[nodiscard]] std::unique_ptr<Connection> connect(const std::string& database);

  [[nodiscard]] const ServerAddress& address() const { return address_; }
  [[nodiscard]] const net::PreLoginAnswer& preLoginAnswer() const { return preLoginAnswer_; }
  /// Nothing where the connection is not encrypted or the certificate is not looked at.
  [[nodiscard]] const std::optional<net::TlsHandshake>& handshake() const { return handshake_; }
  [[nodiscard]] const std::string& servicePrincipal() const { return servicePrincipal_; }
  /// Gives the steps that follow the whole timeout again.
  void restartTimeout() { deadline_ = net::Deadline(access_.options.connectionTimeout); }

 private:
  [[nodiscard]] LoginRequest requestFor(const std::string& database) const;
  [[nodiscard]] std::unique_ptr<Connection> logInBy(const net::Deadline& deadline, const LoginRequest& request) const;
  /// Runs the steps before the login, which throw the reason why it failed.
  void diagnose();

  ServerAccess access_;
  net::Deadline deadline_;
  std::string server_;
  ServerAddress address_;
  net::HostEntry host_;
  std::optional<net::Socket> socket_;
  net::PreLoginAnswer preLoginAnswer_;
  std::optional<net::TlsHandshake> handshake_;
  std::string servicePrincipal_;
};

/// Everything between a server's name and an open connection. `database` may be empty. Throws Error.
[[nodiscard]] std::unique_ptr<Connection> openServer(const std::string& server, const std::string& database,
                                                     const ServerAccess& access);

}  // namespace korvel::db::odbc
