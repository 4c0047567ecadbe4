#include "db/connection_state.h"
#include "db/connection_string.h"

#include <gtest/gtest.h>

namespace korvel::db {
namespace {

using settings::LanguageOffset;

TEST(ConnectionState, startsEmpty) {
  const ConnectionState state;
  EXPECT_EQ(state.ConnectionString + state.AdvancedConnectionString + state.CurrentServer + state.CurrentDatabase +
                state.CurrentDatabaseLocation,
            "");
}

TEST(ConnectionState, databaseNameDiffersFromTheMembersSpelling) {
  EXPECT_EQ(databaseName(static_cast<int>(DatabaseTypeEnum::Korvel_Audit)), "Korvel_Audit");
  EXPECT_EQ(databaseName(static_cast<int>(DatabaseTypeEnum::Korvel_AuditMU)), "Korvel_Audit_MU");
  for (const int other : {2, -1, 1000}) EXPECT_EQ(databaseName(other), "Korvel_Audit_MU") << other;
}

TEST(ConnectionState, connectionStringToTheLetter) {
  EXPECT_EQ(buildConnectionString("S", "Korvel_Audit_MU"),
            "Provider=SQLOLEDB; Server=S; Database=Korvel_Audit_MU; Integrated Security=SSPI;");
  EXPECT_EQ(buildConnectionString("", ""), "Provider=SQLOLEDB; Server=; Database=; Integrated Security=SSPI;");
}

TEST(ConnectionState, defaultServerFillsAllButTheLocation) {
  ConnectionState state;
  state.CurrentDatabaseLocation = "D:\\Data\\Korvel_Audit.mdf";
  openDefaultServer(state, "AUDITSRV", 1);
  EXPECT_EQ(state.ConnectionString,
            "Provider=SQLOLEDB; Server=AUDITSRV; Database=Korvel_Audit_MU; Integrated Security=SSPI;");
  EXPECT_EQ(state.AdvancedConnectionString, state.ConnectionString);
  EXPECT_EQ(state.CurrentServer, "AUDITSRV");
  EXPECT_EQ(state.CurrentDatabase, "Korvel_Audit_MU");
  EXPECT_EQ(state.CurrentDatabaseLocation, "D:\\Data\\Korvel_Audit.mdf");
}

TEST(ConnectionState, defaultServerIsNotTested) {
  ConnectionState state;
  openDefaultServer(state, "(None)", 0);
  EXPECT_EQ(state.ConnectionString,
            "Provider=SQLOLEDB; Server=(None); Database=Korvel_Audit; Integrated Security=SSPI;");
}

TEST(ConnectionState, selectionText) {
  ConnectionState state;
  openDefaultServer(state, "AUDITSRV", 0);
  EXPECT_EQ(selectionText(state), "AUDITSRV - [Korvel_Audit]");
}

TEST(ConnectionState, onlyEmptyAndNoneNameNoServer) {
  EXPECT_FALSE(namesAServer(""));
  EXPECT_FALSE(namesAServer("(None)"));
  for (const char* name : {"(none)", "None", " ", "AUDITSRV", "(embedded)"}) EXPECT_TRUE(namesAServer(name)) << name;
}

TEST(DatabaseInformation, beforeAnySelectionOnlyLabels) {
  EXPECT_EQ(databaseInformation({}, LanguageOffset("0")), "SQL Server = \r\nDatabase Name = \r\nDatabase Location = ");
}

TEST(DatabaseInformation, afterTheDefaultServerTheLocationIsEmpty) {
  ConnectionState state;
  openDefaultServer(state, "AUDITSRV", 0);
  EXPECT_EQ(databaseInformation(state, LanguageOffset("0")),
            "SQL Server = AUDITSRV\r\nDatabase Name = Korvel_Audit\r\nDatabase Location = ");
}

TEST(DatabaseInformation, firstLabelAndTitleStayEnglish) {
  ConnectionState state;
  state.CurrentServer = "S";
  state.CurrentDatabase = "D";
  state.CurrentDatabaseLocation = "L";
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    const LanguageOffset language{offset};
    const std::string name(settings::loadText({10070}, language));
    const std::string location(settings::loadText({10071}, language));
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(databaseInformation(state, language), "SQL Server = S\r\n" + name + " = D\r\n" + location + " = L");
  }
  EXPECT_NE(databaseInformation(state, LanguageOffset("10000")), databaseInformation(state, LanguageOffset("0")));
  EXPECT_EQ(databaseInformationTitle, "Audit Database Information");
}

}  // namespace
}  // namespace korvel::db
