#include "db/discovery/network_directory.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "db/discovery/configured_servers.h"
#include "db/embedded/embedded_connection.h"
#include "db/embedded/embedded_folder.h"
#include "db/odbc/server_address.h"
#include "db/odbc/server_connector.h"
#include "db/open_connection.h"

namespace korvel::db {

namespace {

namespace fs = std::filesystem;

const std::string thisComputer = "localhost";

/// The databases of a server with their first files, asked for in fewer words where the server refuses: a reader often
/// may not see the files, and some servers lack the one view or the other.
constexpr std::array<std::string_view, 3> databaseQueries = {
    "SELECT d.name, CAST(CASE WHEN d.name IN ('master', 'model', 'msdb', 'tempdb') THEN 1 ELSE d.is_distributor END AS "
    "bit), f.physical_name FROM master.sys.databases d LEFT JOIN master.sys.master_files f "
    "ON f.database_id = d.database_id AND f.file_id = 1 ORDER BY d.name",
    "SELECT d.name, CAST(CASE WHEN d.name IN ('master', 'model', 'msdb', 'tempdb') THEN 1 ELSE 0 END AS bit) "
    "FROM master.sys.databases d ORDER BY d.name",
    "SELECT name, CASE WHEN name IN ('master', 'model', 'msdb', 'tempdb') THEN 1 ELSE 0 END "
    "FROM master.dbo.sysdatabases ORDER BY name"};

class DatabaseSink final : public ResultSink {
 public:
  void beginResult(std::span<const Field>) override { databases.clear(); }
  bool row(std::span<const Cell> cells) override {
    const auto text = [&](std::size_t i) { return i < cells.size() ? std::string(cells[i].text) : std::string{}; };
    databases.push_back({text(0), text(1) == "1", text(2)});
    return true;
  }
  void endResult() override {}

  std::vector<DatabaseInfo> databases;
};

/// Sorted by name, each name once, whatever its case.
std::vector<std::string> tidied(const std::vector<std::string>& names) {
  std::map<std::string, std::string> byName;
  for (const auto& name : names) byName.emplace(caseFolded(name), name);
  std::vector<std::string> sorted;
  sorted.reserve(byName.size());
  for (auto& [folded, name] : byName) sorted.push_back(std::move(name));
  return sorted;
}

void addNames(std::vector<std::string>& names, const std::vector<InstanceInfo>& instances) {
  for (const auto& instance : instances) names.push_back(instance.displayName());
}

/// The computers that configured servers name: they may stand in a subnet that no broadcast reaches.
std::vector<std::string> hostsOf(const std::vector<std::string>& servers) {
  std::vector<std::string> hosts;
  for (const auto& server : servers) {
    try {
      hosts.push_back(parseServerName(server).host);
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch): a name that is none has no computer
    }
  }
  return tidied(hosts);
}

}  // namespace

std::vector<DatabaseInfo> embeddedDatabases(const fs::path& folder) {
  std::vector<DatabaseInfo> databases;
  std::error_code error;
  for (const fs::path& entry : files::listFolder(folder, error)) {
    std::error_code ignored;
    const std::string name = utf8FromPath(entry.stem());
    // What cannot be opened by its name is not offered.
    if (hasExtension(entry, ".db") && isEmbeddedDatabaseName(name) &&
        fs::is_regular_file(files::status(entry, ignored)))
      databases.push_back({name, false, utf8FromPath(entry)});
  }
  if (error) throw folderFailure(folder, systemErrorNumber(error));
  std::sort(databases.begin(), databases.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return databases;
}

std::vector<DatabaseInfo> serverDatabases(Connection& connection) {
  for (std::size_t i = 0;; ++i) {
    DatabaseSink sink;
    try {
      connection.execute(databaseQueries[i], sink);
      return std::move(sink.databases);
    } catch (const Error& error) {
      // What the server says may be about the words; what we say ourselves is about the connection.
      if (!error.textKey().empty() || i + 1 == databaseQueries.size()) throw;
    }
  }
}

NetworkDirectory::NetworkDirectory(ResolutionClient resolver, Connect connect)
    : resolver_(resolver), connect_(std::move(connect)) {}

std::vector<std::string> NetworkDirectory::localServers() {
  std::vector<std::string> names{std::string(embeddedServerName)};
  addNames(names, resolver_.instancesOf(thisComputer));
  return tidied(names);
}

std::vector<std::string> NetworkDirectory::networkServers() {
  std::vector<std::string> names = configuredServers();
  auto hosts = hostsOf(names);
  hosts.emplace_back(thisComputer);
  names.emplace_back(embeddedServerName);
  addNames(names, resolver_.allInstances(hosts));
  return tidied(names);
}

std::vector<DatabaseInfo> NetworkDirectory::databases(const std::string& server, const BrowserOptions& options) {
  if (isEmbeddedServer(server)) return embeddedDatabases(embeddedFolderOf(server));
  const auto list = [&] {
    const ServerListener listener = [this](const ServerEvent& event) {
      if (onEvent) onEvent(event);
    };
    return serverDatabases(*connect_(server, listener, stop));
  };
  try {
    return list();
  } catch (const Error& error) {
    if (!options.reconnects || error.textKey() != "failure.connectionLost") throw;
  }
  return list();
}

std::unique_ptr<ServerDirectory> makeServerDirectory() {
  return std::make_unique<NetworkDirectory>(
      ResolutionClient(), [](const std::string& server, const ServerListener& listener, const std::stop_token& stop) {
        odbc::ServerAccess access = odbc::userAccess();
        access.onEvent = listener;
        access.stop = stop;
        return odbc::openServer(server, {}, access);
      });
}

}  // namespace korvel::db
