#pragma once

#include <array>
#include <span>
#include <string_view>

#include "db/odbc/driver_family.h"

namespace korvel::db::odbc {

struct KnownDriver {
  std::string_view name;
  DriverFamily family;
};

/// What systems differ in about drivers.
struct DriverPlatform {
  std::span<const KnownDriver> known;  ///< best first
  /// Whether a driver can be given a configuration of ours for a login: FreeTDS checks certificates by that only.
  bool givesConfiguration;
};

/// Without "SQL Server": who gives a driver that name there means the vendor's own, of today.
inline constexpr std::array<KnownDriver, 3> posixKnownDrivers = {
    {{"ODBC Driver 18 for SQL Server", DriverFamily::vendor},
     {"ODBC Driver 17 for SQL Server", DriverFamily::vendor},
     {"FreeTDS", DriverFamily::freeTds}}};
inline constexpr DriverPlatform posixDrivers{posixKnownDrivers, true};

/// FreeTDS comes last: it checks nobody's certificate there.
inline constexpr std::array<KnownDriver, 4> windowsKnownDrivers = {
    {{"ODBC Driver 18 for SQL Server", DriverFamily::vendor},
     {"ODBC Driver 17 for SQL Server", DriverFamily::vendor},
     {"SQL Server", DriverFamily::oldVendor},
     {"FreeTDS", DriverFamily::freeTds}}};
inline constexpr DriverPlatform windowsDrivers{windowsKnownDrivers, false};

/// Those of the system that the program runs on.
[[nodiscard]] const DriverPlatform& driverPlatform() noexcept;

}  // namespace korvel::db::odbc
