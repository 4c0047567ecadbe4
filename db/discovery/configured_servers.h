#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvel::db {

/// The servers that a FreeTDS configuration names, as users type servers: host, host,port or host\instance. The section
/// that only sets defaults, and sections without a host, are left out.
[[nodiscard]] std::vector<std::string> serversOfFreeTdsConfiguration(std::string_view text);

/// The servers that an odbc.ini names: of every data source that has one, its server (and port, where it stands apart).
[[nodiscard]] std::vector<std::string> serversOfOdbcConfiguration(std::string_view text);

/// The servers of the user's and the system's own configuration: files, on Windows the data sources of its registry.
/// What is absent or unreadable names none.
[[nodiscard]] std::vector<std::string> configuredServers();

}  // namespace korvel::db
