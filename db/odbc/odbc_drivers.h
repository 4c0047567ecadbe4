#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "db/odbc/odbc_handle.h"

namespace korvel::db::odbc {

/// Families of drivers, which take their settings in different words.
enum class DriverFamily { vendor, freeTds };

struct Driver {
  std::string name;
  DriverFamily family = DriverFamily::vendor;
};

/// The names of the drivers that the driver manager knows.
[[nodiscard]] std::vector<std::string> installedDrivers(const Environment& environment);

/// The best of the installed drivers: the vendor's newest, then FreeTDS; `wanted`, where it is not empty, is taken as
/// it is. Throws Error when there is none.
[[nodiscard]] Driver chooseDriver(const std::vector<std::string>& installed, std::string_view wanted);

}  // namespace korvel::db::odbc
