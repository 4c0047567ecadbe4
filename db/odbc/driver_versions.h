#pragma once

#include <string>
#include <vector>

namespace korvel::db::odbc {

/// A driver as the driver manager's configuration names it.
struct DriverVersion {
  std::string name;
  std::string library;  ///< its file, with or without a folder; empty where the configuration does not tell
  std::string version;  ///< empty where the file does not tell without a login
};

/// The driver manager's name and version.
[[nodiscard]] std::string driverManagerVersion();
/// All installed drivers.
[[nodiscard]] std::vector<DriverVersion> driverVersions();

/// The file of a driver's library, which the system looks for where it has no folder; empty where there is none.
[[nodiscard]] std::string libraryFile(const std::string& library);
/// The version in a driver's file, where its makers have written it there as FreeTDS does ("freetds v1.3.17"); empty
/// where there is none.
[[nodiscard]] std::string versionInFile(const std::string& file);

}  // namespace korvel::db::odbc
