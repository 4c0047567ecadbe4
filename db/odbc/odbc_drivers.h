#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/odbc/driver_family.h"
#include "db/odbc/odbc_handle.h"

namespace korvel::db::odbc {

/// The names of the drivers that the driver manager knows.
[[nodiscard]] std::vector<std::string> installedDrivers(const Environment& environment);

/// The best of the installed drivers: the vendor's newest, then FreeTDS, then what every Windows has; `wanted`, where
/// it is not empty, is taken as it is. Throws Error when there is none.
[[nodiscard]] Driver chooseDriver(const std::vector<std::string>& installed, std::string_view wanted);

}  // namespace korvel::db::odbc
