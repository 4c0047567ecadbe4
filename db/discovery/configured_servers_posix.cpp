#include <filesystem>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "db/discovery/configured_servers.h"
#include "settings/registry.h"

namespace korvel::db {

namespace {

namespace fs = std::filesystem;

/// A file of the user's own; nothing where his folder is not known, never one of the current folder.
fs::path ofTheUser(const char* name) {
  const fs::path home = pathFromUtf8(settings::GetEnvironment("HOME"));
  return home.is_absolute() ? home / name : fs::path();
}

/// An empty path names no file.
void addServersOf(const fs::path& file, std::vector<std::string> (*read)(std::string_view),
                  std::vector<std::string>& servers) {
  if (file.empty()) return;
  try {
    for (auto& server : read(readFile(file))) servers.push_back(std::move(server));
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): a file that is not there names no servers
  }
}

}  // namespace

std::vector<std::string> configuredServers() {
  const std::string odbcIni = settings::GetEnvironment("ODBCINI");
  const std::string freeTdsConf = settings::GetEnvironment("FREETDSCONF");
  std::vector<std::string> servers;
  addServersOf(odbcIni.empty() ? ofTheUser(".odbc.ini") : pathFromUtf8(odbcIni), serversOfOdbcConfiguration, servers);
  addServersOf("/etc/odbc.ini", serversOfOdbcConfiguration, servers);
  addServersOf(freeTdsConf.empty() ? ofTheUser(".freetds.conf") : pathFromUtf8(freeTdsConf),
               serversOfFreeTdsConfiguration, servers);
  addServersOf("/etc/freetds/freetds.conf", serversOfFreeTdsConfiguration, servers);
  return servers;
}

}  // namespace korvel::db
