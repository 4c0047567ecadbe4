#include <gtest/gtest.h>

#include "db/connection_state.h"
#include "db/connection_string.h"
#include "db/open_connection.h"
#include "tests/db/collected_answer.h"

namespace korvel::db {
namespace {

std::string parts(std::string_view text) {
  const ConnectionTarget target = parseConnectionString(text);
  return target.provider + "|" + target.server + "|" + target.database + "|" +
         (target.integratedSecurity ? "own" : "-");
}

TEST(ConnectionString, theViewersOwnFormReadsBack) {
  EXPECT_EQ(parts(buildConnectionString("AUDITSRV\\PLANT", "Korvel_Audit")),
            "SQLOLEDB|AUDITSRV\\PLANT|Korvel_Audit|own");
  EXPECT_EQ(parts(buildConnectionString("(embedded)", "Korvel_Audit_MU")), "SQLOLEDB|(embedded)|Korvel_Audit_MU|own");
  EXPECT_EQ(parts(buildConnectionString("/srv/audit data", "D")), "SQLOLEDB|/srv/audit data|D|own");
}

TEST(ConnectionString, readsKeysFreely) {
  EXPECT_EQ(parts("server=S;database=D"), "|S|D|-");
  EXPECT_EQ(parts("  SERVER =  S  ;; DataBase = D ; \r\n"), "|S|D|-");
  EXPECT_EQ(parts("Data Source=S;Initial Catalog=D;Trusted_Connection=yes"), "|S|D|own");
  EXPECT_EQ(parts("Server=S;Database=D;Integrated Security=False"), "|S|D|-");
  EXPECT_EQ(parts("Server=S;Database=D;Workstation ID=X;Colour=blue"), "|S|D|-");
  EXPECT_EQ(parts("Server=A;Database=D;Server=B"), "|B|D|-");
  EXPECT_EQ(parts("Server=S;Database=a=b"), "|S|a=b|-");
}

TEST(ConnectionString, readsEnclosedValues) {
  EXPECT_EQ(parts("Server='S;T';Database=D"), "|S;T|D|-");
  EXPECT_EQ(parts("Server=\"S\"\"T\" ; Database=D"), "|S\"T|D|-");
  EXPECT_EQ(parts("Server={S}}T};Database='it''s'"), "|S}T|it's|-");
  EXPECT_EQ(parts("Server=' S ';Database=D"), "| S |D|-");
  EXPECT_EQ(parts("Server=S'T;Database=D"), "|S'T|D|-");
}

TEST(ConnectionString, refusesWhatIsNone) {
  for (const char* text : {"", "   ", ";;", "Server", "Server;Database=D", "=S;Database=D", "Server=S", "Database=D",
                           "Server=;Database=D", "Server=S;Database=", "Server='S;Database=D", "Server={S;Database=D",
                           "Server='S' T;Database=D", "Server=S;Database=D;stray;Workstation ID=X",
                           "stray;Server=S;Database=D", "Server=S;Database=D;stray", "hello world"}) {
    const auto error = test::errorOf([&] { (void)parseConnectionString(text); });
    ASSERT_TRUE(error) << text;
    EXPECT_NE(error->number(), 0) << text;
    EXPECT_FALSE(error->description().empty()) << text;
  }
}

TEST(ConnectionString, theEmptyOneSaysThatNoDatabaseIsSelected) {
  EXPECT_EQ(test::errorOf([] { (void)openConnection(""); })->description(), "No database is selected");
}

TEST(ConnectionString, leadsToTheNamesItWasBuiltOf) {
  for (const char* name :
       {"Korvel_Audit", "AUDITSRV\\WINCC", "AUDITSRV,1444", "(embedded)", "/srv/50% #1", "it's", "a=b"})
    EXPECT_TRUE(connectionStringRoundTrips(name, name)) << name;
  for (const char* name :
       {"", " ", " x", "x ", ";", "x;", "Korvel_Audit; Server=127.0.0.1,2", "'x'", "\"x\"", "{x}", "'x"}) {
    EXPECT_FALSE(connectionStringRoundTrips(name, "D")) << name;
    EXPECT_FALSE(connectionStringRoundTrips("S", name)) << name;
  }
}

}  // namespace
}  // namespace korvel::db
