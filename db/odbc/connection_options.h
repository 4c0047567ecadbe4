#pragma once

#include <chrono>
#include <string>

#include "settings/registry.h"

namespace korvel::db {

/// What an administrator may adjust about connections to a server. Read from the settings store, section "AuditViewer":
///
/// | value                    | meaning                                                          | default |
/// |--------------------------|------------------------------------------------------------------|---------|
/// | "ConnectionTimeout"      | seconds until a server that does not answer is given up          | 15      |
/// | "CommandTimeout"         | seconds until a running query is given up, 0 for never           | 30      |
/// | "Encrypt"                | "0" also talks to servers that cannot encrypt                    | "1"     |
/// | "TrustServerCertificate" | "1" accepts a certificate that this computer does not know       | "0"     |
/// | "ApplicationIntent"      | "ReadOnly" lets an availability group serve from a secondary     | ""      |
/// | "CertificateAuthorities" | file of the certificate authorities to trust, empty for the      | ""      |
/// |                          | system's own                                                     |         |
///
/// The environment variable KORVEL_ODBC_DRIVER names another driver than the best one that is installed.
struct ConnectionOptions {
  std::chrono::seconds connectionTimeout{15};
  std::chrono::seconds commandTimeout{30};
  bool encrypt = true;
  bool trustServerCertificate = false;
  std::string certificateAuthorities;
  bool readOnlyIntent = false;
  std::string driver;  ///< empty for the best one that is installed
};

/// Values that are missing or no numbers keep their defaults; a settings store that cannot be read is an Error.
[[nodiscard]] ConnectionOptions loadConnectionOptions(const settings::Registry& registry);

}  // namespace korvel::db
