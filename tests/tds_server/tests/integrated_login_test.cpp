#include "tests/tds_server/kerberos/kerberos_realm.h"
#include "tests/tds_server/tests/server_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// A realm with a user, and a server with its service's key. The realm is made before any other thread runs.
class IntegratedLogin : public ::testing::Test {
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
  }

  Diagnostics connect(const std::string& server = "localhost") {
    odbc_.disconnect();
    return odbc_.connect("Driver={" + driver_ + "};Server=" + server + ";Port=" + std::to_string(server_->port()) +
                         ";TDS_Version=7.4;Trusted_Connection=yes;");
  }

  std::string driver_;
  std::optional<KerberosRealm> realm_;
  std::optional<TdsServer> server_;
  BareOdbc odbc_;
};

TEST_F(IntegratedLogin, AValidTicketIsAccepted) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  const Record record = server_->record();
  ASSERT_THAT(record.logins, SizeIs(1));
  EXPECT_TRUE(record.logins[0].integrated);
  EXPECT_EQ(record.logins[0].principal, "auditor@KORVEL.TEST");
  EXPECT_EQ(record.logins[0].user, "");
  EXPECT_EQ(record.logins[0].password, "");
  server_->answer("SELECT 1", Answer().result({{"Nr", "int"}}).row({1}));
  EXPECT_THAT(odbc_.execute("SELECT 1"), ElementsAre("[Nr]", "1"));
  EXPECT_THAT(server_->record().problems, IsEmpty());
}

TEST_F(IntegratedLogin, WithoutATicketThereIsNoLogin) {
  EXPECT_THAT(connect(), Not(IsEmpty()));
  EXPECT_THAT(server_->record().logins, IsEmpty());
}

TEST_F(IntegratedLogin, AnExpiredTicketIsNotUsed) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  realm_->expireTickets();
  EXPECT_THAT(connect(), Not(IsEmpty()));
  EXPECT_THAT(server_->record().logins, SizeIs(1));
  realm_->signOut();
  realm_->signIn("auditor");
  EXPECT_THAT(connect(), IsEmpty());
}

TEST_F(IntegratedLogin, AServiceThatTheRealmDoesNotKnow) {
  realm_->signIn("auditor");
  TdsServer unknown;
  BareOdbc odbc;
  EXPECT_THAT(odbc.connect("Driver={" + driver_ + "};Server=localhost;Port=" + std::to_string(unknown.port()) +
                           ";TDS_Version=7.4;Trusted_Connection=yes;"),
              Not(IsEmpty()));
  EXPECT_THAT(unknown.record().logins, IsEmpty());
}

TEST_F(IntegratedLogin, ATicketThatTheServerCannotReadIsRefused) {
  realm_->signIn("auditor");
  // The keytab no longer holds the key that tickets for the server are encrypted with.
  std::filesystem::remove(realm_->serviceKeytab());
  realm_->addService("MSSQLSvc/elsewhere:1433");
  EXPECT_THAT(connect(), Contains(HasSubstr(" 18452 ")));
  const Record record = server_->record();
  ASSERT_THAT(record.logins, SizeIs(1));
  EXPECT_EQ(record.logins[0].principal, "");
  EXPECT_THAT(record.problems, SizeIs(1));
}

TEST_F(IntegratedLogin, TheTicketsUserMayStillBeRefused) {
  realm_->signIn("auditor");
  server_->refuseLogin({{18456, "Login failed for user 'KORVEL\\auditor'.", 14}});
  EXPECT_THAT(connect(), Contains(HasSubstr(" 18456 Login failed")));
  EXPECT_EQ(server_->record().logins.at(0).principal, "auditor@KORVEL.TEST");
}

TEST_F(IntegratedLogin, WithoutAKdcCachedTicketsAreValid) {
  realm_->signIn("auditor");
  ASSERT_THAT(connect(), IsEmpty());
  realm_->stopKdc();
  EXPECT_THAT(connect(), IsEmpty());
  realm_->signOut();
  EXPECT_THROW(realm_->signIn("auditor"), std::runtime_error);
}

}  // namespace
}  // namespace korvel::test::tds
