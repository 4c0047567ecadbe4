#pragma once

#include "tests/odbc/wire.h"
#include "tests/support/kerberos/kerberos_realm.h"

namespace korvel::test {

/// A realm with the user "auditor", not signed in yet, and a peer in it that checks tickets. The realm is made before
/// any thread runs.
class RealmTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto driver = installedFreeTds();
    if (!driver) GTEST_SKIP() << "the FreeTDS ODBC driver is not installed";
    if (const auto missing = KerberosRealm::missing()) GTEST_SKIP() << *missing;
    driver_ = *driver;
    realm_.emplace();
    realm_->addUser("auditor");
    peer_.emplace();
    realm_->addService("MSSQLSvc/localhost:" + std::to_string(peer_->port()));
    peer_->checkTickets(realm_->serviceKeytab());
    writeWholeFile(authorities(), peer_->certificatePem());
  }

  [[nodiscard]] std::string serverName() const { return "localhost," + std::to_string(peer_->port()); }
  [[nodiscard]] std::string authorities() const { return (folder_ / "authorities.pem").string(); }

  std::string driver_;
  std::optional<KerberosRealm> realm_;
  std::optional<tds::TdsPeer> peer_;
  TemporaryFolder folder_;
};

}  // namespace korvel::test
