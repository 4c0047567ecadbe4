#pragma once

#include <optional>
#include <string>

#include "cli/read_option.h"
#include "db/connection_string.h"
#include "db/open_connection.h"

namespace korvel::cli {

/// The name of a server or database, as long as a connection string gives it back as it is: a semicolon in it would end
/// the value there, and the rest be taken for something else.
inline std::optional<std::string> connectionName(const std::string& name) {
  if (!db::connectionStringRoundTrips(name, name)) return std::nullopt;
  return name;
}

}  // namespace korvel::cli
