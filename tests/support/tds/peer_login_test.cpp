#include <array>

#include "tests/support/tds/peer_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class PeerLogin : public PeerTest {
 protected:
  Login lastLogin() const { return peer_.record().logins.back(); }
};

TEST_F(PeerLogin, IsOnRecord) {
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

TEST_F(PeerLogin, IsRefusedWithTheServersWords) {
  peer_.refuseLogin({{18456, "Login failed for user 'reader'.", 14, 1, 65536}});
  EXPECT_THAT(connect(), Contains("42000 18456 Login failed for user 'reader'."));
  peer_.refuseLogin({{4060, "Cannot open database \"Nowhere\" requested by the login. The login failed.", 11},
                     {18456, "Login failed for user 'reader'.", 14}});
  const Diagnostics both = connect();
  EXPECT_THAT(both, Contains(::testing::HasSubstr(" 4060 Cannot open database \"Nowhere\"")));
  EXPECT_THAT(both, Contains(::testing::HasSubstr(" 18456 Login failed for user 'reader'.")));
  peer_.refuseLogin({});
  EXPECT_THAT(connect(), IsEmpty());
}

struct Wish {
  const char* client;
  Encryption server;
  bool connects;
  bool loginEncrypted;
  bool sessionEncrypted;
};

TEST_F(PeerLogin, EncryptionIsWhatBothSidesWant) {
  const std::array wishes{
      Wish{"off", Encryption::unsupported, true, false, false},
      Wish{"off", Encryption::available, true, false, false},
      Wish{"off", Encryption::required, false, false, false},
      Wish{"request", Encryption::unsupported, true, false, false},
      Wish{"request", Encryption::available, true, true, false},
      Wish{"request", Encryption::required, true, true, true},
      Wish{"require", Encryption::unsupported, false, false, false},
      Wish{"require", Encryption::available, true, true, true},
      Wish{"require", Encryption::required, true, true, true},
  };
  for (const Wish& wish : wishes) {
    SCOPED_TRACE(wish.client + std::string(" against ") + std::to_string(static_cast<int>(wish.server)));
    peer_.setEncryption(wish.server);
    const std::size_t before = peer_.record().logins.size();
    const Diagnostics trouble = connect(std::string("Encryption=") + wish.client + ";UID=reader;PWD=secret;");
    ASSERT_EQ(trouble.empty(), wish.connects);
    ASSERT_EQ(peer_.record().logins.size(), before + (wish.connects ? 1 : 0));
    if (!wish.connects) continue;
    EXPECT_EQ(lastLogin().loginEncrypted, wish.loginEncrypted);
    EXPECT_EQ(lastLogin().sessionEncrypted, wish.sessionEncrypted);
    EXPECT_THAT(shown(Answer().result({{"Nr", "int"}}).row({1})), ElementsAre("[Nr]", "1"));
  }
}

TEST_F(PeerLogin, AnEncryptedConnectionCarriesLongAnswers) {
  ASSERT_THAT(connect("Encryption=require;UID=reader;PWD=secret;"), IsEmpty());
  const std::string megabyte(std::size_t{1024} * 1024, 'x');
  const auto lines = shown(Answer().result({{"a", "nvarchar(max)"}}).row({megabyte}).row({"end"}));
  EXPECT_TRUE(lines == (std::vector<std::string>{"[a]", megabyte, "end"}));
}

TEST_F(PeerLogin, TheCertificateCanBeShownAround) {
  EXPECT_THAT(peer_.certificatePem(), StartsWith("-----BEGIN CERTIFICATE-----"));
  EXPECT_THAT(TdsPeer().certificatePem(), Not(peer_.certificatePem()));
}

TEST_F(PeerLogin, AStoppedPeerIsAClosedPort) {
  ASSERT_THAT(connect(), IsEmpty());
  const std::uint16_t port = peer_.port();
  peer_.stop();
  EXPECT_THAT(connect(), Not(IsEmpty()));
  TdsPeer again(port);
  EXPECT_THAT(connect(), IsEmpty());
}

}  // namespace
}  // namespace korvel::test::tds
