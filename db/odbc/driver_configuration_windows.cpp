#include "db/odbc/driver_configuration.h"

namespace korvel::db::odbc {

// The drivers of this system check certificates by themselves. FreeTDS, where somebody chose it, finds no section for
// the server and refuses to log in unless the settings trust every certificate.
DriverConfiguration::DriverConfiguration(const LoginRequest& /*request*/) {}

DriverConfiguration::~DriverConfiguration() = default;

}  // namespace korvel::db::odbc
