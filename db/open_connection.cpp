#include "db/open_connection.h"

#include <array>

#include "db/connection_string.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/embedded_folder.h"
#include "db/odbc/server_connector.h"

namespace korvel::db {
namespace {

std::unique_ptr<Connection> openEmbeddedTarget(const ConnectionTarget& target, const std::stop_token& /*stop*/) {
  return openEmbedded(embeddedFolderOf(target.server), target.database);
}

std::unique_ptr<Connection> openServerTarget(const ConnectionTarget& target, const std::stop_token& stop) {
  odbc::ServerAccess access = odbc::userAccess();
  access.stop = stop;
  return odbc::openServer(target.server, target.database, access);
}

/// The engines, asked in this order whether a server name is theirs; the last one takes every name.
struct Engine {
  bool (*serves)(std::string_view server);
  std::unique_ptr<Connection> (*open)(const ConnectionTarget& target, const std::stop_token& stop);
};
constexpr std::array engines = {
    Engine{isEmbeddedServer, openEmbeddedTarget},
    Engine{[](std::string_view) { return true; }, openServerTarget},
};

}  // namespace

std::unique_ptr<Connection> openConnection(std::string_view connectionString, const std::stop_token& stop) {
  const ConnectionTarget target = parseConnectionString(connectionString);
  for (const Engine& engine : engines)
    if (engine.serves(target.server)) return engine.open(target, stop);
  return openServerTarget(target, stop);
}

}  // namespace korvel::db
