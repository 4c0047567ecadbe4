#include "db/odbc/odbc_connection.h"
#include "settings/string_table.h"
#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using tds::Answer;
using tds::Encryption;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class OdbcLogin : public WireTest {
 protected:
  [[nodiscard]] tds::Login lastLogin() const { return server_.record().logins.back(); }
  std::string connectKey(const std::string& database = "Korvel_Audit") {
    const auto error = connectError(database);
    return error ? error->textKey() : "connected";
  }
};

TEST_F(OdbcLogin, namesTheDatabaseTheServerAndTheProgram) {
  (void)connect("Korvel_Audit_MU");
  EXPECT_EQ(lastLogin().database, "Korvel_Audit_MU");
  EXPECT_EQ(lastLogin().server, "localhost");
  EXPECT_EQ(lastLogin().application, "Korvel Audit Viewer");
  EXPECT_EQ(lastLogin().tdsVersion, 0x74000004U);
  EXPECT_THAT(server_.texts(), IsEmpty());
}

TEST_F(OdbcLogin, takesOneConnection) {
  for (const bool trusting : {false, true}) {
    access_.options.trustServerCertificate = trusting;
    const std::size_t before = server_.record().connections;
    (void)connect();
    EXPECT_EQ(server_.record().connections, before + 1);
  }
}

TEST_F(OdbcLogin, sendsTheIntentToReadOnly) {
  (void)connect();
  EXPECT_FALSE(lastLogin().readOnlyIntent);
  access_.options.readOnlyIntent = true;
  (void)connect();
  EXPECT_TRUE(lastLogin().readOnlyIntent);
}

TEST_F(OdbcLogin, withoutADatabaseItIsTheUsersOwn) {
  (void)connect("");
  EXPECT_EQ(lastLogin().database, "");
}

TEST_F(OdbcLogin, isEncryptedFromTheFirstWordOn) {
  for (const Encryption server : {Encryption::available, Encryption::required}) {
    server_.setEncryption(server);
    (void)connect();
    EXPECT_TRUE(lastLogin().loginEncrypted);
    EXPECT_TRUE(lastLogin().sessionEncrypted);
  }
}

TEST_F(OdbcLogin, refusesAServerThatCannotEncrypt) {
  server_.setEncryption(Encryption::unsupported);
  EXPECT_EQ(connectKey(), "failure.noEncryption");
  EXPECT_THAT(server_.record().logins, IsEmpty());
  access_.options.encrypt = false;
  EXPECT_EQ(connectKey(), "connected");
  EXPECT_FALSE(lastLogin().loginEncrypted);
}

TEST_F(OdbcLogin, withoutEncryptTheLoginIsEncryptedWhereTheServerCan) {
  access_.options.encrypt = false;
  EXPECT_EQ(connectKey(), "connected");
  EXPECT_TRUE(lastLogin().loginEncrypted);
}

TEST_F(OdbcLogin, refusesAnUnknownCertificate) {
  access_.options.certificateAuthorities.clear();
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.certificate");
  EXPECT_THAT(error->description(), HasSubstr("self-signed"));
  EXPECT_THAT(server_.record().logins, IsEmpty());
}

/// It is not known whether an unknown driver checks a certificate.
TEST_F(OdbcLogin, looksAtTheCertificateItselfBeforeAnUnknownDriverLogsIn) {
  access_.options.certificateAuthorities.clear();
  access_.options.driver = SCRIPTED_DRIVER;
  access_.driverText = [](const db::odbc::LoginRequest&) { return "Driver={" SCRIPTED_DRIVER "};"; };
  EXPECT_EQ(connectKey(), "failure.certificate");
  access_.options.trustServerCertificate = true;
  EXPECT_EQ(connectKey(), "connected");
}

TEST_F(OdbcLogin, refusesAnotherServersCertificate) {
  writeFileAtomically(folder_ / "other.pem", tds::TdsServer().certificatePem());
  access_.options.certificateAuthorities = (folder_ / "other.pem").string();
  EXPECT_EQ(connectKey(), "failure.certificate");
  access_.options.certificateAuthorities = (folder_ / "nowhere.pem").string();
  EXPECT_EQ(connectKey(), "failure.noAuthorities");
  writeFileAtomically(folder_ / "nonsense.pem", "no certificate");
  access_.options.certificateAuthorities = (folder_ / "nonsense.pem").string();
  EXPECT_EQ(connectKey(), "failure.noAuthorities");
}

TEST_F(OdbcLogin, refusesACertificateForAnotherHost) {
  // Another spelling of 127.0.0.1 that the certificate does not name.
  const auto error =
      errorOf([&] { (void)db::odbc::openServer("127.1," + std::to_string(server_.port()), "D", access_); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.certificate");
  EXPECT_THAT(server_.record().logins, IsEmpty());
}

TEST_F(OdbcLogin, takesAnAddressThatTheCertificateNames) {
  const auto opened = db::odbc::openServer("127.0.0.1," + std::to_string(server_.port()), "D", access_);
  EXPECT_EQ(lastLogin().database, "D");
}

TEST_F(OdbcLogin, trustsAnUnknownCertificateWhereTheSettingSaysSo) {
  access_.options.certificateAuthorities.clear();
  access_.options.trustServerCertificate = true;
  (void)connect();
  EXPECT_TRUE(lastLogin().sessionEncrypted);
}

/// The driver's own check, without ours before it.
class DriversCertificateCheck : public OdbcLogin {
 protected:
  std::string loginKey(const std::string& host, const std::string& authorities) {
    access_.options.certificateAuthorities = authorities;
    db::odbc::LoginRequest request;
    request.driver = {access_.options.driver, db::odbc::DriverFamily::freeTds};
    request.address = {host, server_.port()};
    request.options = access_.options;
    const auto error = errorOf([&] {
      const db::net::Deadline deadline(access_.options.connectionTimeout);
      const db::odbc::OdbcConnection connection(request, access_.driverText(request), deadline);
    });
    return error ? error->textKey() : "connected";
  }
};

TEST_F(DriversCertificateCheck, isReal) {
  const std::string authorities = access_.options.certificateAuthorities;
  EXPECT_EQ(loginKey("localhost", ""), "failure.loginBroken");
  EXPECT_EQ(loginKey("127.1", authorities), "failure.loginBroken");
  EXPECT_EQ(loginKey("localhost", (folder_ / "nowhere.pem").string()), "failure.loginBroken");
  EXPECT_THAT(server_.record().logins, IsEmpty());
  EXPECT_EQ(loginKey("localhost", authorities), "connected");
}

TEST_F(DriversCertificateCheck, leavesTheEnvironmentAndNoFilesBehind) {
  const EnvironmentVariable temporary("TMPDIR", folder_.path().string());
  const EnvironmentVariable configuration("FREETDSCONF", "/etc/freetds/mine.conf");
  const std::string authorities = access_.options.certificateAuthorities;
  EXPECT_EQ(loginKey("localhost", authorities), "connected");
  EXPECT_EQ(loginKey("localhost", ""), "failure.loginBroken");
  EXPECT_STREQ(std::getenv("FREETDSCONF"), "/etc/freetds/mine.conf");
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
    files.push_back(entry.path().filename().string());
  EXPECT_THAT(files, ElementsAre("authorities.pem"));
}

TEST_F(OdbcLogin, saysThatTheServerRefusedTheUser) {
  server_.refuseLogin({{18456, "Login failed for user 'PLANT\\auditor'.", 14, 1, 65536}});
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 18456);
  EXPECT_EQ(error->textKey(), "failure.loginRefused");
  EXPECT_THAT(error->description(), HasSubstr("Login failed for user 'PLANT\\auditor'."));
  EXPECT_THAT(settings::describe(*error, settings::LanguageOffset("10000")), HasSubstr("Anmeldung"));
}

TEST_F(OdbcLogin, saysThatTheDatabaseCannotBeOpened) {
  server_.refuseLogin({{4060, "Cannot open database \"Nowhere\" requested by the login. The login failed.", 11},
                       {18456, "Login failed for user 'PLANT\\auditor'.", 14}});
  const auto error = connectError("Nowhere");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 4060);
  EXPECT_EQ(error->textKey(), "failure.databaseRefused");
  EXPECT_THAT(error->description(), HasSubstr("Nowhere"));
}

TEST_F(OdbcLogin, repeatsOtherMessagesOfTheServer) {
  server_.refuseLogin(
      {{17809, "Could not connect because the maximum number of connections has been reached.", 10 + 4}});
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), 17809);
  EXPECT_EQ(error->description(), "Could not connect because the maximum number of connections has been reached.");
}

TEST_F(OdbcLogin, noDatabasesNameCanAddWordsOfItsOwn) {
  for (const char* name : {"a;b", "a;UID=evil", "{", "{{", "a{b;", "a=b", "it's", "\"quoted\"", " blanks ",
                           "Größe 🛢", "Насос", "a]b", "[a]", "DSN=x", ";UID=evil;", "{UID=evil"}) {
    SCOPED_TRACE(name);
    (void)connect(name);
    EXPECT_EQ(lastLogin().database, name);
    EXPECT_EQ(lastLogin().user, "reader");
    EXPECT_EQ(lastLogin().application, "Korvel Audit Viewer");
  }
  const std::size_t logins = server_.record().logins.size();
  for (const char* name : {"}", "}}", "a}b", "a};UID=evil;x={", "a}};UID=evil", "a};DRIVER={x}"})
    EXPECT_EQ(connectKey(name), "failure.notInConnection") << name;
  EXPECT_EQ(connectKey(std::string(129, 'x')), "failure.notInConnection");
  EXPECT_EQ(connectKey(std::string("a\0b", 3)), "failure.notInConnection");
  EXPECT_EQ(server_.record().logins.size(), logins);
}

TEST_F(OdbcLogin, noServersNameCanAddWordsOfItsOwn) {
  const std::size_t before = server_.record().connections;
  for (const char* name : {"localhost;UID=evil",
                           "local}host",
                           "{localhost}",
                           "localhost}};UID=x",
                           "local host",
                           "local'h",
                           "local\"h",
                           "a=b",
                           "local\nhost",
                           "[localhost]",
                           "#h",
                           "",
                           " ",
                           ",1433",
                           "\\inst",
                           "a/b",
                           "(None)",
                           "h,0",
                           "h,65536",
                           "h,-1",
                           "h,1x",
                           "h,"}) {
    SCOPED_TRACE(name);
    const auto error = errorOf([&] { (void)db::odbc::openServer(name, "D", access_); });
    ASSERT_TRUE(error);
    EXPECT_THAT(error->textKey(), ::testing::AnyOf("failure.noHostName", "failure.noPort"));
  }
  EXPECT_EQ(server_.record().connections, before);
}

TEST_F(OdbcLogin, noSettingCanAddLinesOfItsOwn) {
  access_.options.certificateAuthorities = "x\n\thost = elsewhere";
  EXPECT_EQ(connectKey(), "failure.noAuthorities");
  access_.options.certificateAuthorities.clear();
  access_.options.trustServerCertificate = true;
  access_.options.driver = "FreeTDS};UID=evil;x={";
  EXPECT_EQ(connectKey(), "failure.notInConnection");
}

TEST_F(OdbcLogin, saysThatADriverIsNotInstalled) {
  access_.options.driver = "Unknown driver, not FreeTDS";
  const auto error = connectError();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.driverUnusable");
  EXPECT_THAT(error->description(), HasSubstr("Unknown driver"));
}

TEST_F(OdbcLogin, theSettingsFileOfFreeTdsHasNoSay) {
  writeFileAtomically(folder_ / "mine.conf",
                      "[global]\n\tencryption = off\n\ttds version = 7.0\n[localhost]\n\thost = x\n");
  const EnvironmentVariable configuration("FREETDSCONF", (folder_ / "mine.conf").string());
  (void)connect();
  EXPECT_TRUE(lastLogin().sessionEncrypted);
  EXPECT_EQ(lastLogin().tdsVersion, 0x74000004U);
}

}  // namespace
}  // namespace korvel::test
