#include "db/odbc/server_address.h"

#include <algorithm>

#include "base/text.h"
#include "db/discovery/resolution_protocol.h"
#include "settings/string_table.h"

namespace korvel::db {

namespace {

constexpr std::int32_t invalidParameter = 87;

constexpr std::size_t longestHostName = 255;
/// What names hold beside letters and digits; ":" and "%" stand in addresses.
constexpr std::string_view hostMarks = ".-_:%";

bool isThisComputer(std::string_view host) {
  return host == "." || equalsIgnoringAsciiCase(host, "(local)");
}

}  // namespace

bool isHostName(std::string_view text) noexcept {
  return !text.empty() && text.size() <= longestHostName && std::all_of(text.begin(), text.end(), [](char c) {
    const bool letterOrDigit = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return letterOrDigit || static_cast<unsigned char>(c) >= 0x80U || hostMarks.find(c) != std::string_view::npos;
  });
}

ServerName parseServerName(std::string_view name) {
  constexpr std::string_view protocol = "tcp:";
  std::string_view rest = trimBlanks(name);
  if (equalsIgnoringAsciiCase(rest.substr(0, protocol.size()), protocol)) rest.remove_prefix(protocol.size());

  ServerName server;
  if (const auto comma = rest.find(','); comma != std::string_view::npos) {
    server.port = parsePort(trimBlanks(rest.substr(comma + 1)));
    if (!server.port) throw settings::localizedError(invalidParameter, "failure.noPort", {std::string(name)});
    rest = rest.substr(0, comma);
  }
  if (const auto backslash = rest.find('\\'); backslash != std::string_view::npos) {
    server.instance = trimBlanks(rest.substr(backslash + 1));
    rest = rest.substr(0, backslash);
    (void)instanceRequest(server.instance);  // throws for a name that no instance can have
  }
  const std::string_view host = trimBlanks(rest);
  if (isThisComputer(host)) {
    server.host = "localhost";
    return server;
  }
  if (!isHostName(host)) throw settings::localizedError(invalidParameter, "failure.noHostName", {std::string(name)});
  server.host = host;
  return server;
}

std::string servicePrincipalOf(const std::string& fullHostName, std::uint16_t port) {
  return "MSSQLSvc/" + fullHostName + ":" + std::to_string(port);
}

}  // namespace korvel::db
