#include "db/odbc/connection_options.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "settings/registry_file.h"
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"

namespace korvel::db {
namespace {

using namespace std::chrono_literals;

class Options : public ::testing::Test {
 protected:
  void set(const std::string& name, const std::string& value) {
    settings::Registry(backend_).SaveSetting("Molvane", "AuditViewer", name, value);
  }
  ConnectionOptions load() { return loadConnectionOptions(settings::Registry(backend_)); }

  test::TemporaryFolder folder_;
  settings::RegistryFile backend_{folder_ / "settings.reg"};
};

TEST_F(Options, haveTheDefaultsThatUsersKnow) {
  const test::EnvironmentVariable driver("KORVEL_ODBC_DRIVER");
  const ConnectionOptions options = load();
  EXPECT_EQ(options.connectionTimeout, 15s);
  EXPECT_EQ(options.commandTimeout, 30s);
  EXPECT_TRUE(options.encrypt);
  EXPECT_FALSE(options.trustServerCertificate);
  EXPECT_EQ(options.certificateAuthorities, "");
  EXPECT_FALSE(options.readOnlyIntent);
  EXPECT_EQ(options.driver, "");
}

TEST_F(Options, areReadFromTheSettingsStoreAndTheEnvironment) {
  set("ConnectionTimeout", "5");
  set("CommandTimeout", "0");
  set("Encrypt", "0");
  set("TrustServerCertificate", "1");
  set("CertificateAuthorities", "/etc/plant/ca.pem");
  set("ApplicationIntent", "readonly");
  const test::EnvironmentVariable driver("KORVEL_ODBC_DRIVER", "Mine");
  const ConnectionOptions options = load();
  EXPECT_EQ(options.connectionTimeout, 5s);
  EXPECT_EQ(options.commandTimeout, 0s);
  EXPECT_FALSE(options.encrypt);
  EXPECT_TRUE(options.trustServerCertificate);
  EXPECT_EQ(options.certificateAuthorities, "/etc/plant/ca.pem");
  EXPECT_TRUE(options.readOnlyIntent);
  EXPECT_EQ(options.driver, "Mine");
}

TEST_F(Options, nonsenseKeepsTheDefaults) {
  for (const char* nonsense : {"", "0", "-1", "soon", "5 ", "1e3", "999999999999999999999", "86401"}) {
    set("ConnectionTimeout", nonsense);
    EXPECT_EQ(load().connectionTimeout, 15s) << nonsense;
  }
  for (const char* nonsense : {"", "-1", "never", "99999999"}) {
    set("CommandTimeout", nonsense);
    EXPECT_EQ(load().commandTimeout, 30s) << nonsense;
  }
  for (const char* text : {"", "1", "yes", "false"}) {
    set("Encrypt", text);
    set("TrustServerCertificate", text == std::string("1") ? "" : text);
    EXPECT_TRUE(load().encrypt) << text;
    EXPECT_FALSE(load().trustServerCertificate) << text;
  }
}

}  // namespace
}  // namespace korvel::db
