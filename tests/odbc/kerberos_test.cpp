#include <sys/socket.h>

#include <chrono>

#include "db/odbc/server_check.h"
#include "query/standard_query.h"
#include "tests/odbc/realm.h"
#include "tests/tds_server/socket.h"

namespace korvel::test {
namespace {

using namespace std::chrono_literals;
using tds::Answer;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// The product as it is delivered, in a separate realm.
class OdbcKerberos : public RealmTest {
 protected:
  void SetUp() override {
    RealmTest::SetUp();
    if (!server_) return;
    access_.options.certificateAuthorities = authorities();
    access_.options.driver = driver_;
  }

  std::optional<Error> connectError() {
    return errorOf([&] { (void)db::odbc::openServer(serverName(), "Korvel_Audit", access_); });
  }
  /// The key of the message about a failed login.
  std::string failure() {
    const auto error = connectError();
    return error ? error->textKey() : "connected";
  }

  db::odbc::ServerAccess access_;
};

TEST_F(OdbcKerberos, aTicketIsAllItTakes) {
  realm_->signIn("auditor");
  const auto connection = db::odbc::openServer(serverName(), "Korvel_Audit", access_);
  server_->answer("go", Answer().result({{"Nr", "int"}}).row({1}));
  EXPECT_EQ(answerText(*connection, "go"), "Nr\n1\n");
  const tds::Login login = server_->record().logins.at(0);
  EXPECT_TRUE(login.integrated);
  EXPECT_EQ(login.principal, "auditor@KORVEL.TEST");
  EXPECT_EQ(connection->identity().login, login.principal);
  EXPECT_EQ(login.user, "");
  EXPECT_EQ(login.password, "");
  EXPECT_EQ(login.database, "Korvel_Audit");
  EXPECT_TRUE(login.sessionEncrypted);
  EXPECT_THAT(server_->record().problems, IsEmpty());
}

TEST_F(OdbcKerberos, withoutEncryptionToo) {
  realm_->signIn("auditor");
  server_->setEncryption(tds::Encryption::unsupported);
  access_.options.encrypt = false;
  EXPECT_EQ(failure(), "connected");
  EXPECT_EQ(server_->record().logins.at(0).principal, "auditor@KORVEL.TEST");
}

TEST_F(OdbcKerberos, anAddressTakesTheTicketOfItsOwnName) {
  realm_->addService("MSSQLSvc/127.0.0.1:" + std::to_string(server_->port()));
  realm_->signIn("auditor");
  const auto opened = db::odbc::openServer("127.0.0.1," + std::to_string(server_->port()), "Korvel_Audit", access_);
  EXPECT_EQ(server_->record().logins.at(0).principal, "auditor@KORVEL.TEST");
}

TEST_F(OdbcKerberos, saysThatThereIsNoTicket) {
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.noTicket") << error->description();
  EXPECT_THAT(error->description(), HasSubstr("kinit"));
  EXPECT_THAT(server_->record().logins, IsEmpty());
}

TEST_F(OdbcKerberos, saysThatTheTicketHasExpired) {
  realm_->signIn("auditor");
  EXPECT_EQ(failure(), "connected");
  realm_->expireTickets();
  EXPECT_EQ(failure(), "failure.ticketExpired");
  EXPECT_THAT(server_->record().logins, SizeIs(1));
  realm_->signIn("auditor");
  EXPECT_EQ(failure(), "connected");
}

TEST_F(OdbcKerberos, saysThatTheServiceIsUnknown) {
  realm_->signIn("auditor");
  const tds::TdsServer unknown;
  access_.options.trustServerCertificate = true;
  const auto error = errorOf(
      [&] { (void)db::odbc::openServer("localhost," + std::to_string(unknown.port()), "Korvel_Audit", access_); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.unknownService") << error->description();
  EXPECT_THAT(error->description(), HasSubstr("MSSQLSvc/localhost:" + std::to_string(unknown.port())));
  EXPECT_THAT(unknown.record().logins, IsEmpty());
}

TEST_F(OdbcKerberos, saysThatTheServerDoesNotTrustTheTicket) {
  realm_->signIn("auditor");
  std::filesystem::remove(realm_->serviceKeytab());
  realm_->addService("MSSQLSvc/elsewhere:1433");
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 18452);
  EXPECT_EQ(error->textKey(), "failure.loginRefused");
}

TEST_F(OdbcKerberos, saysThatTheServerRefusedTheUser) {
  realm_->signIn("auditor");
  server_->refuseLogin({{18456, "Login failed for user 'KORVEL\\auditor'.", 14}});
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 18456);
  EXPECT_EQ(error->textKey(), "failure.loginRefused");
  EXPECT_THAT(error->description(), HasSubstr("KORVEL\\auditor"));
}

TEST_F(OdbcKerberos, reportsThatTheLoginServiceIsUnreachable) {
  realm_->signIn("auditor");
  realm_->stopKdc();
  EXPECT_EQ(failure(), "failure.loginServiceSilent");
}

TEST_F(OdbcKerberos, doesNotWaitForALoginServiceThatStaysSilent) {
  realm_->signIn("auditor");
  realm_->stopKdc();
  // A service that accepts requests and never answers.
  const LoopbackSocket silent = bindLoopback(SOCK_DGRAM);
  writeFileAtomically(folder_ / "krb5.conf",
                      "[libdefaults]\n\tdefault_realm = KORVEL.TEST\n\tdns_lookup_kdc = false\n"
                      "[realms]\n\tKORVEL.TEST = {\n\t\tkdc = 127.0.0.1:" +
                          std::to_string(silent.port) + "\n\t}\n");
  const EnvironmentVariable configuration("KRB5_CONFIG", (folder_ / "krb5.conf").string());
  access_.options.connectionTimeout = 1s;
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(failure(), "failure.loginServiceSilent");
  EXPECT_LT(std::chrono::steady_clock::now() - before, 5s);
}

TEST_F(OdbcKerberos, failuresLeaveTheListsEmptyAndTheNextQueryWorks) {
  std::vector<tds::Column> columns{{"Nr", "int"}};
  std::vector<tds::Value> row{1};
  for (int i = 1; i < 18; ++i) {
    columns.emplace_back(i == 15 ? "AuditType" : "c" + std::to_string(i), "nvarchar(30)");
    row.emplace_back("CS");
  }
  server_->answerOthers([&](const tds::Command&) { return Answer().procedure().result(columns).row(row); });
  query::FilterTree tree;
  tree.selectAll();
  auto lists = query::makeResultLists();
  const auto ask = [&] {
    return query::runStandardQuery(
        {tree, {}, {}},
        [&](std::string_view, const std::stop_token&) {
          return db::odbc::openServer(serverName(), "Korvel_Audit", access_);
        },
        lists, 0);
  };
  EXPECT_EQ(ask().outcome, query::QueryOutcome::failed);
  EXPECT_EQ(lists[0].rowCount(), 0U);
  realm_->signIn("auditor");
  EXPECT_EQ(ask().outcome, query::QueryOutcome::filled);
  EXPECT_EQ(lists[1].rowCount(), 1U);
}

TEST_F(OdbcKerberos, theCheckNamesTheTicket) {
  const auto steps = db::checkServer(serverName(), "", access_);
  ASSERT_GT(steps.size(), 5U);
  EXPECT_EQ(steps[4].key, "ticket");
  EXPECT_EQ(steps[4].outcome, db::CheckOutcome::failed);
  EXPECT_EQ(steps[5].outcome, db::CheckOutcome::notReached);
  realm_->signIn("auditor");
  EXPECT_EQ(db::checkServer(serverName(), "", access_)[5].outcome, db::CheckOutcome::ok);
}

}  // namespace
}  // namespace korvel::test
