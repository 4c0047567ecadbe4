#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"
#include "tests/tds_server/kerberos/child_process.h"

namespace korvel::test {

/// A Kerberos realm for one test: a real KDC on a loopback port, with its database and keys in a temporary folder.
/// While the object lives, this process and its children use the realm (KRB5_CONFIG, KRB5CCNAME). It must be made
/// before any other thread runs, and only one at a time.
class KerberosRealm {
 public:
  static constexpr const char* name = "KORVEL.TEST";

  /// The program that is missing on this machine; nothing where a realm can be made.
  [[nodiscard]] static std::optional<std::string> missing();

  /// Throws std::runtime_error with the messages of the Kerberos tools.
  KerberosRealm();
  ~KerberosRealm();
  KerberosRealm(const KerberosRealm&) = delete;
  KerberosRealm& operator=(const KerberosRealm&) = delete;

  /// Adds a principal that can sign in: "auditor".
  void addUser(const std::string& user);
  /// Adds a service principal and puts its key into `serviceKeytab`: "MSSQLSvc/localhost:1433".
  void addService(const std::string& service);
  [[nodiscard]] std::filesystem::path serviceKeytab() const { return folder_ / "services.keytab"; }

  /// Acquires a ticket for `user`, replacing the tickets in the cache.
  void signIn(const std::string& user);
  /// Deletes all tickets.
  void signOut() const;
  /// Rewrites the cached tickets so that they expired a minute ago.
  void expireTickets() const;
  [[nodiscard]] std::filesystem::path ticketCache() const { return folder_ / "tickets"; }

  /// Stops the KDC: cached tickets stay valid, no new ones can be acquired.
  void stopKdc() { kdc_.reset(); }

 private:
  void startKdc();
  void writeConfiguration(unsigned port) const;
  /// Runs a tool; throws where it fails.
  void run(const std::string& program, const std::vector<std::string>& arguments) const;

  TemporaryFolder folder_;
  EnvironmentVariable configuration_;
  EnvironmentVariable profile_;
  EnvironmentVariable cache_;
  std::unique_ptr<ChildProcess> kdc_;
};

}  // namespace korvel::test
