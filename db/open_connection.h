#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

#include "db/connection.h"

namespace korvel::db {

/// The parts of a connection string that the viewer uses. Keys are read case-insensitively, blanks around keys and
/// values are dropped, unknown keys are ignored, a repeated key keeps its last value.
struct ConnectionTarget {
  std::string provider;
  std::string server;
  std::string database;
  bool integratedSecurity = false;
};
/// Throws Error for a text that is no connection string: empty, or without a server or database.
[[nodiscard]] ConnectionTarget parseConnectionString(std::string_view connectionString);
/// Whether a connection string built of these names leads to exactly them. A name that holds a semicolon or begins with
/// a quote would lead somewhere else.
[[nodiscard]] bool leadsTo(std::string_view server, std::string_view database);

/// The server name that stands for the embedded engine's own folder.
inline constexpr std::string_view embeddedServerName = "(embedded)";
/// Whether a server name means the embedded engine: "(embedded)" or the absolute path of a folder.
[[nodiscard]] bool isEmbeddedServer(std::string_view server);
/// The folder of the embedded databases: KORVEL_AUDIT_DATA, else korvel/audit among the user's data (the XDG data
/// folder; on Windows, the local data of applications). Throws Error for a relative KORVEL_AUDIT_DATA where the working
/// folder is gone.
[[nodiscard]] std::filesystem::path embeddedFolder();
/// The folder that an embedded server name stands for.
[[nodiscard]] std::filesystem::path embeddedFolderOf(std::string_view server);

/// Opens a connection; the server name chooses the engine. `stop` ends what is under way on a connection to a server,
/// now or later; the embedded engine asks its sink. Throws Error with the engine's number and text.
[[nodiscard]] std::unique_ptr<Connection> openConnection(std::string_view connectionString,
                                                         const std::stop_token& stop = {});

}  // namespace korvel::db
