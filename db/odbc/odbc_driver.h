#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::db::odbc {

/// Families of drivers, which take their settings as different attributes.
enum class DriverFamily : std::uint8_t {
  vendor,     ///< the server's vendor's own, of today
  oldVendor,  ///< the one that every Windows has, as old as the system's first versions
  freeTds,
};

struct Driver {
  std::string name;
  DriverFamily family = DriverFamily::vendor;
  /// Whether its attributes are known: any other driver gets the vendor's and may ignore them.
  bool isKnown = true;
};

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

/// Without "SQL Server": a driver of that name is an alias of the vendor's current one there.
inline constexpr std::array<KnownDriver, 3> posixKnownDrivers = {
    {{"ODBC Driver 18 for SQL Server", DriverFamily::vendor},
     {"ODBC Driver 17 for SQL Server", DriverFamily::vendor},
     {"FreeTDS", DriverFamily::freeTds}}};
inline constexpr DriverPlatform posixDrivers{posixKnownDrivers, true};

/// FreeTDS comes last: it checks no certificates there.
inline constexpr std::array<KnownDriver, 4> windowsKnownDrivers = {
    {{"ODBC Driver 18 for SQL Server", DriverFamily::vendor},
     {"ODBC Driver 17 for SQL Server", DriverFamily::vendor},
     {"SQL Server", DriverFamily::oldVendor},
     {"FreeTDS", DriverFamily::freeTds}}};
inline constexpr DriverPlatform windowsDrivers{windowsKnownDrivers, false};

/// The names of the drivers that the driver manager knows.
[[nodiscard]] std::vector<std::string> installedDrivers();
/// The best of the installed drivers, in the platform's order; `wanted`, where it is not empty, is taken as it is.
/// Throws Error when there is none.
[[nodiscard]] Driver chooseDriver(const std::vector<std::string>& installed, std::string_view wanted,
                                  const DriverPlatform& platform);

}  // namespace korvel::db::odbc
