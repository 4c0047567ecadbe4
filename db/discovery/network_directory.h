#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "db/connection.h"
#include "db/discovery/resolution_client.h"
#include "db/server_directory.h"

namespace korvel::db {

/// The real directory: the resolution protocol, the user's configuration, this computer, the embedded folder.
class NetworkDirectory final : public ServerDirectory {
 public:
  /// Opens a connection to a server's default database, which reports its events to the listener and ends at a stop.
  using Connect = std::function<std::unique_ptr<Connection>(const std::string& server, const ServerListener& listener,
                                                            const std::stop_token& stop)>;
  NetworkDirectory(ResolutionClient resolver, Connect connect);

  std::vector<std::string> networkServers() override;
  std::vector<std::string> localServers() override;
  std::vector<DatabaseInfo> databases(const std::string& server, const BrowserOptions& options) override;

 private:
  ResolutionClient resolver_;
  Connect connect_;
};

/// The databases of the server behind a connection, sorted by name.
[[nodiscard]] std::vector<DatabaseInfo> serverDatabases(Connection& connection);
/// The databases of a folder of the embedded engine, sorted by name. Throws Error for a folder that cannot be listed.
[[nodiscard]] std::vector<DatabaseInfo> embeddedDatabases(const std::filesystem::path& folder);

/// The directory with the platform's own resolver port and the user's own login.
[[nodiscard]] std::unique_ptr<ServerDirectory> makeServerDirectory();

}  // namespace korvel::db
