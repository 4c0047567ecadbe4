#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvel::db {

inline constexpr std::uint16_t defaultServerPort = 1433;

/// A server name as users type it, taken apart: host, host\instance or host,port ("tcp:" in front is allowed).
struct ServerName {
  std::string host;  ///< "." and "(local)" stand for this computer and become "localhost"
  std::string instance;
  std::optional<std::uint16_t> port;
};

/// Throws Error for a name that cannot be one: no host, a port that is none, or an instance name that cannot exist.
[[nodiscard]] ServerName parseServerName(std::string_view name);

/// Whether a text can be a computer's name or address. Nothing that passes can add words of its own to a connection
/// text or a line to a configuration file.
[[nodiscard]] bool isHostName(std::string_view text) noexcept;

/// Where to connect to.
struct ServerAddress {
  std::string host;
  std::uint16_t port = defaultServerPort;
};

/// The name under which a server is known to the login service: "MSSQLSvc/host:port", the host by its full name.
[[nodiscard]] std::string servicePrincipalOf(const std::string& fullHostName, std::uint16_t port);

}  // namespace korvel::db
