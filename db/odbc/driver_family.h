#pragma once

#include <cstdint>
#include <string>

namespace korvel::db::odbc {

/// Families of drivers, which take their settings in different words.
enum class DriverFamily : std::uint8_t {
  vendor,     ///< the server's vendor's own, of today
  oldVendor,  ///< the one that every Windows has, as old as the system's first versions
  freeTds,
};

struct Driver {
  std::string name;
  DriverFamily family = DriverFamily::vendor;
  /// Whether its manners are known: somebody else's driver gets the vendor's words and may not heed them.
  bool isKnown = true;
};

}  // namespace korvel::db::odbc
