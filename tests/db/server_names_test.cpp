#include "db/odbc/driver_login.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "db/odbc/driver_configuration.h"
#include "db/odbc/odbc_driver.h"
#include "db/odbc/server_address.h"
#include "tests/db/collected_answer.h"

namespace korvel::db {
namespace {

using odbc::DriverFamily;
using odbc::posixDrivers;
using odbc::windowsDrivers;
using ::testing::HasSubstr;
using ::testing::Not;

std::string takenApart(std::string_view name) {
  const ServerName server = parseServerName(name);
  return server.host + " " + server.instance + " " + (server.port ? std::to_string(*server.port) : "");
}

TEST(ServerNames, areTakenApart) {
  EXPECT_EQ(takenApart("AUDITSRV"), "AUDITSRV  ");
  EXPECT_EQ(takenApart("  AUDITSRV  "), "AUDITSRV  ");
  EXPECT_EQ(takenApart("audit-srv.plant.example"), "audit-srv.plant.example  ");
  EXPECT_EQ(takenApart("AUDITSRV\\WINCC"), "AUDITSRV WINCC ");
  EXPECT_EQ(takenApart("AUDITSRV,1444"), "AUDITSRV  1444");
  EXPECT_EQ(takenApart("AUDITSRV , 65535 "), "AUDITSRV  65535");
  EXPECT_EQ(takenApart("AUDITSRV\\WINCC,1444"), "AUDITSRV WINCC 1444");
  EXPECT_EQ(takenApart("tcp:AUDITSRV,1444"), "AUDITSRV  1444");
  EXPECT_EQ(takenApart("TCP:AUDITSRV"), "AUDITSRV  ");
  EXPECT_EQ(takenApart("."), "localhost  ");
  EXPECT_EQ(takenApart("(local)\\WINCC"), "localhost WINCC ");
  EXPECT_EQ(takenApart("10.0.0.7,1433"), "10.0.0.7  1433");
  EXPECT_EQ(takenApart("fe80::1"), "fe80::1  ");
  EXPECT_EQ(takenApart("prüfstand"), "prüfstand  ");
}

TEST(ServerNames, thatCannotBeOneAreRefused) {
  for (const char* name :
       {"",        "  ",     ",1433", "\\WINCC", "a b", "a;b",     "a\tb",  "a{",   "(None)", "a\\",
        "a\\b\\c", "a\\b c", "a,",    "a,0",     "a,x", "a,65536", "a,1 2", "a,+5", "tcp:",   "a\nb"})
    EXPECT_THROW((void)parseServerName(name), Error) << name;
  EXPECT_THROW((void)parseServerName(std::string(256, 'a')), Error);
  EXPECT_THROW((void)parseServerName("a\\" + std::string(33, 'b')), Error);
}

odbc::LoginRequest request(DriverFamily family) {
  odbc::LoginRequest request;
  request.driver = {family == DriverFamily::freeTds ? "FreeTDS" : "ODBC Driver 18 for SQL Server", family};
  request.address = {"auditsrv.plant", 1444};
  request.database = "Korvel_Audit";
  request.servicePrincipal = "MSSQLSvc/auditsrv.plant:1444";
  return request;
}

TEST(DriverText, ofTheVendorsDriver) {
  odbc::LoginRequest vendor = request(DriverFamily::vendor);
  EXPECT_EQ(driverTextOn(posixDrivers, vendor),
            "Driver={ODBC Driver 18 for SQL Server};Server={auditsrv.plant,1444};Encrypt={yes};"
            "TrustServerCertificate={no};MultiSubnetFailover={yes};Database={Korvel_Audit};Trusted_Connection={yes};"
            "APP={Korvel Audit Viewer};");
  vendor.options.trustServerCertificate = true;
  EXPECT_THAT(driverTextOn(posixDrivers, vendor), HasSubstr("Encrypt={yes};TrustServerCertificate={yes};"));
  vendor.options.encrypt = false;
  EXPECT_THAT(driverTextOn(posixDrivers, vendor), HasSubstr("Encrypt={no};"));
  EXPECT_FALSE(needsConfiguration(vendor));
}

TEST(DriverText, asksForTheIntentToReadOnlyWhereTheSettingSaysSo) {
  for (const DriverFamily family : {DriverFamily::vendor, DriverFamily::freeTds}) {
    odbc::LoginRequest asked = request(family);
    EXPECT_THAT(driverTextOn(posixDrivers, asked), Not(HasSubstr("ApplicationIntent")));
    asked.options.readOnlyIntent = true;
    EXPECT_THAT(driverTextOn(posixDrivers, asked), HasSubstr("ApplicationIntent={ReadOnly};"));
  }
  // The old driver ignores the keyword and would connect to the primary.
  odbc::LoginRequest old = request(DriverFamily::oldVendor);
  old.options.readOnlyIntent = true;
  const auto error = test::errorOf([&] { (void)driverTextOn(windowsDrivers, old); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->textKey(), "failure.noIntentForDriver");
}

TEST(DriverText, ofTheDriverThatEveryWindowsHas) {
  odbc::LoginRequest old = request(DriverFamily::oldVendor);
  old.driver.name = "SQL Server";
  EXPECT_EQ(driverTextOn(windowsDrivers, old),
            "Driver={SQL Server};Server={auditsrv.plant,1444};Encrypt={yes};Network={DBMSSOCN};"
            "Database={Korvel_Audit};Trusted_Connection={yes};APP={Korvel Audit Viewer};");
  old.options.trustServerCertificate = true;
  EXPECT_THAT(driverTextOn(windowsDrivers, old), Not(HasSubstr("TrustServerCertificate")));
  EXPECT_FALSE(needsConfiguration(old));
}

TEST(DriverText, ofFreeTds) {
  odbc::LoginRequest freeTds = request(DriverFamily::freeTds);
  EXPECT_TRUE(needsConfiguration(freeTds));
  EXPECT_EQ(driverTextOn(posixDrivers, freeTds),
            "Driver={FreeTDS};Servername={auditsrv.plant};ServerSPN={MSSQLSvc/auditsrv.plant:1444};"
            "Database={Korvel_Audit};Trusted_Connection={yes};APP={Korvel Audit Viewer};");
  EXPECT_EQ(freeTdsConfiguration(freeTds),
            "[auditsrv.plant]\n\thost = auditsrv.plant\n\tport = 1444\n\ttds version = 7.4\n\tencryption = require\n"
            "\tca file = system\n\tcheck certificate hostname = yes\n");
  freeTds.options.trustServerCertificate = true;
  EXPECT_FALSE(needsConfiguration(freeTds));
  EXPECT_EQ(driverTextOn(posixDrivers, freeTds),
            "Driver={FreeTDS};Server={auditsrv.plant};Port={1444};Encryption={require};TDS_Version={7.4};"
            "ServerSPN={MSSQLSvc/auditsrv.plant:1444};Database={Korvel_Audit};Trusted_Connection={yes};"
            "APP={Korvel Audit Viewer};");
  freeTds.options.encrypt = false;
  EXPECT_THAT(driverTextOn(posixDrivers, freeTds), HasSubstr("Encryption={request};"));
}

TEST(DriverText, aSettingThatTheDriverCannotHeedIsRefused) {
  odbc::LoginRequest vendor = request(DriverFamily::vendor);
  vendor.options.certificateAuthorities = "/etc/plant/ca.pem";
  const auto reason = [&](const odbc::DriverPlatform& platform = posixDrivers) {
    const auto error = test::errorOf([&] { (void)driverTextOn(platform, vendor); });
    return error ? error->textKey() : "none";
  };
  EXPECT_EQ(reason(), "failure.authoritiesNotForDriver");
  EXPECT_EQ(reason(windowsDrivers), "failure.authoritiesNotForSystem") << "there FreeTDS is no way out";
  vendor.options.trustServerCertificate = true;
  EXPECT_EQ(reason(), "none");
  vendor.options.trustServerCertificate = false;
  vendor.options.encrypt = false;
  EXPECT_EQ(reason(), "none");
  odbc::LoginRequest freeTds = request(DriverFamily::freeTds);
  freeTds.options.certificateAuthorities = "/etc/plant/ca.pem";
  EXPECT_FALSE(test::errorOf([&] { (void)driverTextOn(posixDrivers, freeTds); }));
}

TEST(DriverText, ofFreeTdsWithoutOurConfigurationDoesNotDependOnAnother) {
  odbc::LoginRequest freeTds = request(DriverFamily::freeTds);
  const auto error = test::errorOf([&] { (void)driverTextOn(windowsDrivers, freeTds); });
  ASSERT_TRUE(error) << "nobody would check the certificate";
  EXPECT_EQ(error->textKey(), "failure.driverChecksNothing");
  EXPECT_THAT(error->description(), HasSubstr("FreeTDS"));
  freeTds.options.trustServerCertificate = true;
  EXPECT_THAT(driverTextOn(windowsDrivers, freeTds),
              HasSubstr(";Server={auditsrv.plant};Port={1444};Encryption={require};TDS_Version={7.4};"));
  freeTds.options.trustServerCertificate = false;
  freeTds.options.encrypt = false;
  EXPECT_THAT(driverTextOn(windowsDrivers, freeTds), HasSubstr(";Server={auditsrv.plant};Port={1444};"));
}

TEST(DriverText, isThatOfTheSystem) {
  const odbc::LoginRequest vendor = request(DriverFamily::vendor);
  EXPECT_EQ(driverText(vendor), driverTextOn(odbc::driverPlatform(), vendor));
}

TEST(DriverText, neverHoldsAUserOrAPassword) {
  for (const DriverFamily family : {DriverFamily::vendor, DriverFamily::oldVendor, DriverFamily::freeTds}) {
    EXPECT_THAT(driverTextOn(posixDrivers, request(family)), Not(HasSubstr("UID")));
    EXPECT_THAT(driverTextOn(posixDrivers, request(family)), Not(HasSubstr("PWD")));
  }
}

TEST(Drivers, theBestOneIsChosen) {
  const std::vector<std::string> all = {"SQLite3", "FreeTDS", "ODBC Driver 17 for SQL Server",
                                        "ODBC Driver 18 for SQL Server"};
  for (const odbc::DriverPlatform& platform : {posixDrivers, windowsDrivers}) {
    const auto chosen = [&](const std::vector<std::string>& installed, std::string_view wanted = "") {
      return odbc::chooseDriver(installed, wanted, platform);
    };
    EXPECT_EQ(chosen(all).name, "ODBC Driver 18 for SQL Server");
    EXPECT_EQ(chosen({"freetds", "ODBC Driver 17 for SQL Server"}).name, "ODBC Driver 17 for SQL Server");
    EXPECT_EQ(chosen({"SQL Server", "ODBC Driver 18 for SQL Server"}).family, DriverFamily::vendor);
    EXPECT_EQ(chosen({"SQLite3", "freetds"}).name, "freetds");
    EXPECT_EQ(chosen({"SQLite3", "freetds"}).family, DriverFamily::freeTds);
    EXPECT_EQ(chosen(all, "FreeTDS").family, DriverFamily::freeTds);
    EXPECT_EQ(chosen(all, "/usr/lib/odbc/libtdsodbc.so").family, DriverFamily::freeTds);
    EXPECT_EQ(chosen({}, "Mine").family, DriverFamily::vendor);
    EXPECT_EQ(test::errorOf([&] { (void)chosen({"SQLite3"}); })->textKey(), "failure.noDriver");
  }
}

TEST(Drivers, ofOneNameMeanWhatTheSystemMeansByIt) {
  const auto chosen = [](const std::vector<std::string>& installed, std::string_view wanted,
                         const odbc::DriverPlatform& platform) {
    return odbc::chooseDriver(installed, wanted, platform).family;
  };
  EXPECT_EQ(chosen({}, "sql server", windowsDrivers), DriverFamily::oldVendor);
  EXPECT_EQ(chosen({}, "SQL Server", posixDrivers), DriverFamily::vendor) << "an alias of the vendor's own";
  EXPECT_EQ(chosen({"SQL Server", "SQLite3"}, "", windowsDrivers), DriverFamily::oldVendor);
  EXPECT_EQ(chosen({"SQL Server", "FreeTDS"}, "", windowsDrivers), DriverFamily::oldVendor);
  EXPECT_EQ(chosen({"SQL Server", "FreeTDS"}, "", posixDrivers), DriverFamily::freeTds);
}

TEST(Drivers, namedAsTheOldOneGetTheWordsOfTheNewOneElsewhere) {
  odbc::LoginRequest named = request(DriverFamily::vendor);
  named.driver = odbc::chooseDriver({}, "SQL Server", posixDrivers);
  EXPECT_THAT(driverTextOn(posixDrivers, named), HasSubstr("TrustServerCertificate={no};"));
  EXPECT_THAT(driverTextOn(posixDrivers, named), Not(HasSubstr("Network=")));
}

}  // namespace
}  // namespace korvel::db
