#include "tests/support/kerberos/kerberos_realm.h"
#include "tests/support/tds/peer_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// A realm, a user in it, and a peer that knows its own service's key. The realm is made before any thread runs.
class IntegratedLogin : public ::testing::Test {
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
  }

  Diagnostics connect(const std::string& server = "localhost") {
    odbc_.disconnect();
    return odbc_.connect("Driver={" + driver_ + "};Server=" + server + ";Port=" + std::to_string(peer_->port()) +
                         ";TDS_Version=7.4;Trusted_Connection=yes;");
  }

  std::string driver_;
  std::optional<KerberosRealm> realm_;
  std::optional<TdsPeer> peer_;
  BareOdbc odbc_;
};

TEST_F(IntegratedLogin, ATicketOpensTheDoor) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  const Record record = peer_->record();
  ASSERT_THAT(record.logins, SizeIs(1));
  EXPECT_TRUE(record.logins[0].integrated);
  EXPECT_EQ(record.logins[0].principal, "auditor@KORVEL.TEST");
  EXPECT_EQ(record.logins[0].user, "");
  EXPECT_EQ(record.logins[0].password, "");
  peer_->answer("SELECT 1", Answer().result({{"Nr", "int"}}).row({1}));
  EXPECT_THAT(odbc_.execute("SELECT 1"), ElementsAre("[Nr]", "1"));
  EXPECT_THAT(peer_->record().complaints, IsEmpty());
}

TEST_F(IntegratedLogin, WithoutATicketThereIsNoLogin) {
  EXPECT_THAT(connect(), Not(IsEmpty()));
  EXPECT_THAT(peer_->record().logins, IsEmpty());
}

TEST_F(IntegratedLogin, AnExpiredTicketIsNone) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  realm_->expireTickets();
  EXPECT_THAT(connect(), Not(IsEmpty()));
  EXPECT_THAT(peer_->record().logins, SizeIs(1));
  realm_->signOut();
  realm_->signIn("auditor");
  EXPECT_THAT(connect(), IsEmpty());
}

TEST_F(IntegratedLogin, AServiceThatTheRealmDoesNotKnow) {
  realm_->signIn("auditor");
  TdsPeer stranger;
  BareOdbc odbc;
  EXPECT_THAT(odbc.connect("Driver={" + driver_ + "};Server=localhost;Port=" + std::to_string(stranger.port()) +
                           ";TDS_Version=7.4;Trusted_Connection=yes;"),
              Not(IsEmpty()));
  EXPECT_THAT(stranger.record().logins, IsEmpty());
}

TEST_F(IntegratedLogin, ATicketThatTheServerCannotReadIsRefused) {
  realm_->signIn("auditor");
  // The server's keys are no longer the ones that tickets for it are made with.
  std::filesystem::remove(realm_->serviceKeytab());
  realm_->addService("MSSQLSvc/elsewhere:1433");
  EXPECT_THAT(connect(), Contains(HasSubstr(" 18452 ")));
  const Record record = peer_->record();
  ASSERT_THAT(record.logins, SizeIs(1));
  EXPECT_EQ(record.logins[0].principal, "");
  EXPECT_THAT(record.complaints, SizeIs(1));
}

TEST_F(IntegratedLogin, TheTicketsUserMayStillBeRefused) {
  realm_->signIn("auditor");
  peer_->refuseLogin({{18456, "Login failed for user 'KORVEL\\auditor'.", 14}});
  EXPECT_THAT(connect(), Contains(HasSubstr(" 18456 Login failed")));
  EXPECT_EQ(peer_->record().logins.at(0).principal, "auditor@KORVEL.TEST");
}

TEST_F(IntegratedLogin, WithoutAKdcTicketsAtHandAreStillGood) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  realm_->stopKdc();
  EXPECT_THAT(connect(), IsEmpty());
  realm_->signOut();
  EXPECT_THROW(realm_->signIn("auditor"), std::runtime_error);
}

}  // namespace
}  // namespace korvel::test::tds
