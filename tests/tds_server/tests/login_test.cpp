#include <array>

#include "tests/tds_server/tests/server_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class ServerLogin : public ServerTest {
 protected:
  Login lastLogin() const { return server_.record().logins.back(); }
};

TEST_F(ServerLogin, IsOnRecord) {
  ASSERT_THAT(connect("Encryption=off;UID=reader;PWD=Gehe!m;Database=Korvel_Audit;APP=Viewer;WSID=PLANT7;"), IsEmpty());
  const Login login = lastLogin();
  EXPECT_EQ(login.user, "reader");
  EXPECT_EQ(login.password, "Gehe!m");
  EXPECT_EQ(login.database, "Korvel_Audit");
  EXPECT_EQ(login.application, "Viewer");
  EXPECT_EQ(login.host, "PLANT7");
  EXPECT_EQ(login.server, "127.0.0.1");
  EXPECT_EQ(login.tdsVersion, 0x74000004U);
  EXPECT_FALSE(login.integrated);
}

TEST_F(ServerLogin, IsRefusedWithTheScriptedErrors) {
  server_.refuseLogin({{18456, "Login failed for user 'reader'.", 14, 1, 65536}});
  EXPECT_THAT(connect(), Contains("42000 18456 Login failed for user 'reader'."));
  server_.refuseLogin({{4060, "Cannot open database \"Nowhere\" requested by the login. The login failed.", 11},
                       {18456, "Login failed for user 'reader'.", 14}});
  const Diagnostics both = connect();
  EXPECT_THAT(both, Contains(::testing::HasSubstr(" 4060 Cannot open database \"Nowhere\"")));
  EXPECT_THAT(both, Contains(::testing::HasSubstr(" 18456 Login failed for user 'reader'.")));
  server_.refuseLogin({});
  EXPECT_THAT(connect(), IsEmpty());
}

struct EncryptionCase {
  const char* client;
  Encryption server;
  bool connects;
  bool loginEncrypted;
  bool sessionEncrypted;
};

TEST_F(ServerLogin, EncryptionIsNegotiated) {
  const std::array cases{
      EncryptionCase{"off", Encryption::unsupported, true, false, false},
      EncryptionCase{"off", Encryption::available, true, false, false},
      EncryptionCase{"off", Encryption::required, false, false, false},
      EncryptionCase{"request", Encryption::unsupported, true, false, false},
      EncryptionCase{"request", Encryption::available, true, true, false},
      EncryptionCase{"request", Encryption::required, true, true, true},
      EncryptionCase{"require", Encryption::unsupported, false, false, false},
      EncryptionCase{"require", Encryption::available, true, true, true},
      EncryptionCase{"require", Encryption::required, true, true, true},
  };
  for (const EncryptionCase& one : cases) {
    SCOPED_TRACE(one.client + std::string(" against ") + std::to_string(static_cast<int>(one.server)));
    server_.setEncryption(one.server);
    const std::size_t before = server_.record().logins.size();
    const Diagnostics trouble = connect(std::string("Encryption=") + one.client + ";UID=reader;PWD=secret;");
    ASSERT_EQ(trouble.empty(), one.connects);
    ASSERT_EQ(server_.record().logins.size(), before + (one.connects ? 1 : 0));
    if (!one.connects) continue;
    EXPECT_EQ(lastLogin().loginEncrypted, one.loginEncrypted);
    EXPECT_EQ(lastLogin().sessionEncrypted, one.sessionEncrypted);
    EXPECT_THAT(shown(Answer().result({{"Nr", "int"}}).row({1})), ElementsAre("[Nr]", "1"));
  }
}

TEST_F(ServerLogin, AnEncryptedConnectionCarriesLongAnswers) {
  ASSERT_THAT(connect("Encryption=require;UID=reader;PWD=secret;"), IsEmpty());
  const std::string megabyte(std::size_t{1024} * 1024, 'x');
  const auto lines = shown(Answer().result({{"a", "nvarchar(max)"}}).row({megabyte}).row({"end"}));
  EXPECT_TRUE(lines == (std::vector<std::string>{"[a]", megabyte, "end"}));
}

TEST_F(ServerLogin, EachServerHasItsOwnCertificate) {
  EXPECT_THAT(server_.certificatePem(), StartsWith("-----BEGIN CERTIFICATE-----"));
  EXPECT_THAT(TdsServer().certificatePem(), Not(server_.certificatePem()));
}

TEST_F(ServerLogin, AStoppedServerHasAClosedPort) {
  ASSERT_THAT(connect(), IsEmpty());
  const std::uint16_t port = server_.port();
  server_.stop();
  EXPECT_THAT(connect(), Not(IsEmpty()));
  TdsServer again(port);
  EXPECT_THAT(connect(), IsEmpty());
}

}  // namespace
}  // namespace korvel::test::tds
