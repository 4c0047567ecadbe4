#pragma once

#include <string>
#include <string_view>

#include "settings/string_table.h"

namespace korvel::db {

/// Which audit database a host wants. The member and the database it selects are deliberately spelled differently.
enum class DatabaseTypeEnum : int { Korvel_Audit = 0, Korvel_AuditMU = 1 };

/// The database selection that all instances of the control share. An empty ConnectionString means that none is
/// selected.
struct ConnectionState {
  std::string ConnectionString;
  std::string AdvancedConnectionString;
  std::string CurrentServer;
  std::string CurrentDatabase;
  std::string CurrentDatabaseLocation;
};

/// "Korvel_Audit" for 0, "Korvel_Audit_MU" for every other value.
[[nodiscard]] std::string_view databaseName(int databaseType) noexcept;
/// server + " - [" + database + "]".
[[nodiscard]] std::string selectionText(const ConnectionState& state);

/// Fills the state from the control's properties, without trying the connection; CurrentDatabaseLocation stays.
void openDefaultServer(ConnectionState& state, std::string_view defaultServer, int databaseType);

/// Fills the state with a database by its names, likewise; where it lies is not known then.
void openDatabase(ConnectionState& state, std::string_view server, std::string_view database);

/// Whether a control with this DefaultSQLServer connects when it is shown: neither "" nor "(None)".
[[nodiscard]] bool namesAServer(std::string_view defaultServer) noexcept;

inline constexpr std::string_view databaseInformationTitle = "Audit Database Information";
/// The lines of the database information box, CR LF between them, none at the end.
[[nodiscard]] std::string databaseInformation(const ConnectionState& state, const settings::LanguageOffset& offset);

}  // namespace korvel::db
