#include "db/odbc/driver_configuration.h"

#include "db/odbc/odbc_driver.h"

namespace korvel::db::odbc {

const DriverPlatform& driverPlatform() noexcept {
  return windowsDrivers;
}

// The drivers of this system check certificates by themselves. FreeTDS, where it was chosen, cannot be configured to:
// driverText() refuses what it would need a configuration for.
DriverConfiguration::DriverConfiguration(const LoginRequest& /*request*/) {}

DriverConfiguration::~DriverConfiguration() = default;

}  // namespace korvel::db::odbc
