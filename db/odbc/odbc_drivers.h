#pragma once

#include <string>
#include <vector>

#include "db/odbc/odbc_handle.h"

namespace korvel::db::odbc {

/// The names of the drivers that the driver manager knows.
[[nodiscard]] std::vector<std::string> installedDrivers(const Environment& environment);

}  // namespace korvel::db::odbc
