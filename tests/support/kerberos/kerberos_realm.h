#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/kerberos/child_process.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

/// A Kerberos realm of the test's own: a real KDC on a loopback port, with its database and keys in a temporary folder.
/// While the object lives, this process and its children belong to the realm (KRB5_CONFIG, KRB5CCNAME); so it is made
/// before any other thread runs, and one at a time.
class KerberosRealm {
 public:
  static constexpr const char* name = "KORVEL.TEST";

  /// What the machine lacks for a realm; nothing where one can be made.
  [[nodiscard]] static std::optional<std::string> missing();

  /// Throws std::runtime_error with the tools' own words.
  KerberosRealm();
  ~KerberosRealm();
  KerberosRealm(const KerberosRealm&) = delete;
  KerberosRealm& operator=(const KerberosRealm&) = delete;

  /// Makes a principal that can sign in: "auditor".
  void addUser(const std::string& user);
  /// Makes a principal that tickets can be for, and puts its key into `serviceKeytab`: "MSSQLSvc/localhost:1433".
  void addService(const std::string& service);
  [[nodiscard]] std::filesystem::path serviceKeytab() const { return folder_ / "services.keytab"; }

  /// Gets `user` a ticket, in place of what was there.
  void signIn(const std::string& user);
  /// Throws all tickets away.
  void signOut() const;
  /// Lets the tickets at hand have ended a minute ago, as the client sees them.
  void expireTickets() const;
  [[nodiscard]] std::filesystem::path ticketCache() const { return folder_ / "tickets"; }

  /// Stops the KDC; tickets at hand stay good, new ones are not to be had.
  void stopKdc() { kdc_.reset(); }

 private:
  void startKdc();
  void writeConfiguration(unsigned port) const;
  /// Runs a tool to its end; throws where that is not a good one.
  void run(const std::string& program, const std::vector<std::string>& arguments) const;

  TemporaryFolder folder_;
  EnvironmentVariable configuration_;
  EnvironmentVariable profile_;
  EnvironmentVariable cache_;
  std::unique_ptr<ChildProcess> kdc_;
};

}  // namespace korvel::test
