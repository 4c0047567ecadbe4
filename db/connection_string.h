#pragma once

#include <string>
#include <string_view>

namespace korvel::db {

/// The connection string, blanks and closing semicolon included; always the running user's own login.
[[nodiscard]] std::string buildConnectionString(std::string_view server, std::string_view database);

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
[[nodiscard]] bool connectionStringRoundTrips(std::string_view server, std::string_view database);

}  // namespace korvel::db
