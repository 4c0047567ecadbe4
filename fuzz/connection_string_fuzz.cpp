// Any connection string from a host is parsed or refused with a message, and so is a server's name that was parsed.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/error.h"
#include "db/connection_string.h"
#include "db/odbc/driver_login.h"
#include "db/odbc/server_address.h"
#include "db/open_connection.h"

namespace {

/// The text for a driver contains the requested values and nothing that a name has injected.
void checkDriverText(const korvel::db::ServerName& name, const std::string& database) {
  using namespace korvel::db::odbc;
  LoginRequest request;
  request.driver = {"FreeTDS", DriverFamily::freeTds};
  request.address = {name.host, name.port.value_or(korvel::db::defaultServerPort)};
  request.database = database;
  std::string text = driverText(request);
  const std::string mine = database.empty() ? "" : "Database={" + database + "};";
  const auto at = text.find(mine);
  if (at == std::string::npos) std::abort();
  text.erase(at, mine.size());
  std::size_t closing = 0;
  for (const char c : text) closing += c == '}' ? 1U : 0U;
  if (closing != 4 || mine.find("};") != (mine.empty() ? std::string::npos : mine.size() - 2)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const korvel::db::ConnectionTarget target = korvel::db::parseConnectionString(text);
    if (target.server.empty() || target.database.empty()) std::abort();
    checkDriverText(korvel::db::parseServerName(target.server), target.database);
  } catch (const korvel::Error& error) {
    if (error.description().empty()) std::abort();
  }
  return 0;
}
