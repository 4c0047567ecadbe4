#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "db/odbc/driver_platform.h"

namespace korvel::db::odbc {

/// The best of the installed drivers, in the platform's order; `wanted`, where it is not empty, is taken as it is.
/// Throws Error when there is none.
[[nodiscard]] Driver chooseDriver(const std::vector<std::string>& installed, std::string_view wanted,
                                  const DriverPlatform& platform);

}  // namespace korvel::db::odbc
