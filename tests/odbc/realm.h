#pragma once

#include "tests/odbc/wire.h"
#include "tests/tds_server/kerberos/kerberos_realm.h"

namespace korvel::test {

/// A realm with the user "auditor", not signed in yet, and a TDS server that checks tickets. The realm is made before
/// any other thread runs.
class RealmTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto driver = installedFreeTds();
    if (!driver) GTEST_SKIP() << "the FreeTDS ODBC driver is not installed";
    if (const auto missing = KerberosRealm::missing()) GTEST_SKIP() << *missing;
    driver_ = *driver;
    realm_.emplace();
    realm_->addUser("auditor");
    server_.emplace();
    realm_->addService("MSSQLSvc/localhost:" + std::to_string(server_->port()));
    server_->checkTickets(realm_->serviceKeytab());
    writeFileAtomically(authorities(), server_->certificatePem());
  }

  [[nodiscard]] std::string serverName() const { return "localhost," + std::to_string(server_->port()); }
  [[nodiscard]] std::string authorities() const { return (folder_ / "authorities.pem").string(); }

  std::string driver_;
  std::optional<KerberosRealm> realm_;
  std::optional<tds::TdsServer> server_;
  TemporaryFolder folder_;
};

}  // namespace korvel::test
