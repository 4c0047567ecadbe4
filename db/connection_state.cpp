#include "db/connection_state.h"

#include <utility>

#include "db/connection_string.h"

namespace korvel::db {

std::string_view databaseName(int databaseType) noexcept {
  return databaseType == static_cast<int>(DatabaseTypeEnum::Korvel_Audit) ? "Korvel_Audit" : "Korvel_Audit_MU";
}

std::string selectionText(const ConnectionState& state) {
  return state.CurrentServer + " - [" + state.CurrentDatabase + "]";
}

void openDefaultServer(ConnectionState& state, std::string_view defaultServer, int databaseType) {
  std::string location = std::move(state.CurrentDatabaseLocation);
  openDatabase(state, defaultServer, databaseName(databaseType));
  state.CurrentDatabaseLocation = std::move(location);
}

void openDatabase(ConnectionState& state, std::string_view server, std::string_view database) {
  state.ConnectionString = buildConnectionString(server, database);
  state.AdvancedConnectionString = buildConnectionString(server, database);
  state.CurrentServer = server;
  state.CurrentDatabase = database;
  state.CurrentDatabaseLocation.clear();
}

bool namesAServer(std::string_view defaultServer) noexcept {
  return !defaultServer.empty() && defaultServer != "(None)";
}

std::string databaseInformation(const ConnectionState& state, const settings::LanguageOffset& offset) {
  constexpr settings::TextId databaseNameLabel{10070};
  constexpr settings::TextId databaseLocationLabel{10071};
  // The first label is not translated: deliberate, as is the box's title.
  std::string text = "SQL Server = " + state.CurrentServer + "\r\n";
  text += settings::loadText(databaseNameLabel, offset);
  text += " = " + state.CurrentDatabase + "\r\n";
  text += settings::loadText(databaseLocationLabel, offset);
  text += " = " + state.CurrentDatabaseLocation;
  return text;
}

}  // namespace korvel::db
