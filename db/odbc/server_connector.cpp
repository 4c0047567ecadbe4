#include "db/odbc/server_connector.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <utility>

#include "db/odbc/driver_configuration.h"
#include "db/odbc/odbc_connection.h"
#include "db/odbc/odbc_driver.h"
#include "db/odbc/odbc_failures.h"
#include "settings/string_table.h"

namespace korvel::db::odbc {

namespace {

constexpr std::int32_t encryptionNotSupported = 20;  // the number that data access layers have always used for it
constexpr std::int32_t untrustedRoot = -2146893019;  // 0x80090325, as users know it

/// Runs a step; its failure becomes one of two sentences, for a server that does not answer and for one that refuses.
template <typename Step>
auto explained(const char* silentKey, const char* failedKey, const std::string& what, const Step& step) {
  try {
    return step();
  } catch (const Error& error) {
    if (!error.textKey().empty()) throw;
    throw settings::localizedError(error.number(), net::isTimeout(error.number()) ? silentKey : failedKey,
                                   {what, error.description()});
  }
}

/// Of what is left of the timeout, what is kept for the steps that say why a driver has failed.
std::chrono::milliseconds timeToDiagnose(const net::Deadline& deadline) {
  return std::min<std::chrono::milliseconds>(deadline.left() / 4, std::chrono::seconds{2});
}

/// Whether a failed login is explained by itself: by the server's own words, or because there is no driver to log in
/// with.
bool explainsItself(const Error& failure) {
  // The driver's own numbers, which look like a server's.
  constexpr std::int32_t firstDriversNumber = 20000;
  constexpr std::int32_t lastDriversNumber = 20999;
  constexpr std::array<std::string_view, 3> sentences = {"failure.loginRefused", "failure.databaseRefused",
                                                         "failure.driverUnusable"};
  if (failure.textKey().empty()) return failure.number() < firstDriversNumber || failure.number() > lastDriversNumber;
  return std::find(sentences.begin(), sentences.end(), failure.textKey()) != sentences.end();
}

ServerAddress locate(const ServerName& name, const net::HostEntry& host, const ResolutionClient& resolver,
                     const net::Deadline& deadline) {
  // A port that is given wins over an instance name, as users of other programs expect.
  if (name.port) return {name.host, *name.port};
  if (name.instance.empty()) return {name.host, defaultServerPort};
  return {name.host, resolver.portOfInstance(name.host, host.endpoints, name.instance, deadline)};
}

}  // namespace

ServerAccess userAccess() {
  const auto backend = settings::platformBackend();
  ServerAccess access;
  access.options = loadConnectionOptions(settings::Registry(*backend));
  return access;
}

ServerConnector::ServerConnector(std::string server, ServerAccess access)
    : access_(std::move(access)), deadline_(access_.options.connectionTimeout), server_(std::move(server)) {}

void ServerConnector::resolveServer() {
  const ServerName name = parseServerName(server_);
  host_ = explained("failure.hostUnknown", "failure.hostUnknown", name.host,
                    [&] { return net::resolveHost(name.host, 0, deadline_); });
  address_ = locate(name, host_, access_.resolver, deadline_);
  // What the name service calls the host becomes part of the driver's text.
  servicePrincipal_ = servicePrincipalOf(isHostName(host_.fullName) ? host_.fullName : address_.host, address_.port);
}

void ServerConnector::connectPort() {
  socket_ = explained("failure.portSilent", "failure.portClosed", shownAddress(address_),
                      [&] { return net::connectTcp(net::atPort(host_.endpoints, address_.port), deadline_); });
}

void ServerConnector::exchangePreLogin() {
  preLoginAnswer_ = explained("failure.serverSilent", "failure.noServer", shownAddress(address_),
                              [&] { return net::exchangePreLogin(*socket_, deadline_); });
}

void ServerConnector::checkEncryption() {
  const ConnectionOptions& options = access_.options;
  const std::string shown = shownAddress(address_);
  if (options.encrypt && preLoginAnswer_.encryption == net::ServerEncryption::notSupported)
    throw settings::localizedError(encryptionNotSupported, "failure.noEncryption", {shown});
  if (options.encrypt && !options.trustServerCertificate) {
    handshake_ = explained("failure.serverSilent", "failure.handshake", shown, [&] {
      return net::performTlsHandshake(*socket_, address_.host, options.certificateAuthorities, deadline_);
    });
    if (!handshake_->problem.empty())
      throw settings::localizedError(untrustedRoot, "failure.certificate", {shown, handshake_->problem});
  }
  socket_.reset();
}

Ticket ServerConnector::acquireTicket() {
  return access_.acquireTicket(servicePrincipal_, deadline_);
}

LoginRequest ServerConnector::requestFor(const std::string& database) const {
  LoginRequest request;
  request.driver = chooseDriver(installedDrivers(), access_.options.driver, driverPlatform());
  request.address = address_;
  request.database = database;
  request.servicePrincipal = servicePrincipal_;
  request.options = access_.options;
  return request;
}

std::unique_ptr<Connection> ServerConnector::logInBy(const net::Deadline& deadline, const LoginRequest& request) const {
  return std::make_unique<OdbcConnection>(request, access_.driverText(request), deadline, access_.onEvent,
                                          access_.stop);
}

std::unique_ptr<Connection> ServerConnector::logIn(const std::string& database) {
  return logInBy(deadline_, requestFor(database));
}

void ServerConnector::diagnose() {
  connectPort();
  exchangePreLogin();
  checkEncryption();
}

std::unique_ptr<Connection> ServerConnector::connect(const std::string& database) {
  const std::chrono::milliseconds kept = timeToDiagnose(deadline_);
  const net::Deadline deadline(deadline_.left() - kept);
  bool looked = false;
  try {
    LoginRequest request = requestFor(database);
    const ConnectionOptions& options = access_.options;
    if (options.encrypt && !options.trustServerCertificate && !checksCertificates(request)) {
      // Whether the driver looks at the certificate is not known.
      looked = true;
      diagnose();
    }
    request.ticketHolder = access_.acquireTicket(servicePrincipal_, deadline).holder;
    return logInBy(deadline, request);
  } catch (const Error& failure) {
    if (looked || access_.stop.stop_requested() || explainsItself(failure)) throw;
    // A driver that could not be ended in time has used up the rest, too.
    if (deadline_.left() < kept) deadline_ = net::Deadline(kept);
    diagnose();
    throw;
  }
}

std::unique_ptr<Connection> openServer(const std::string& server, const std::string& database,
                                       const ServerAccess& access) {
  ServerConnector connector(server, access);
  connector.resolveServer();
  return connector.connect(database);
}

}  // namespace korvel::db::odbc
