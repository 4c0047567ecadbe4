#include "db/odbc/connection_options.h"

#include <charconv>
#include <string_view>

#include "base/numbers.h"
#include "base/text.h"

namespace korvel::db {

namespace {

/// One day; keeps a deadline inside the clock's range.
constexpr long longestTimeout = 24L * 60 * 60;

std::string setting(const settings::Registry& registry, const std::string& name) {
  return registry.GetSetting(std::string(settings::applicationName), std::string(settings::viewerSection), name, "");
}

void readSeconds(const settings::Registry& registry, const std::string& name, long least,
                 std::chrono::seconds& seconds) {
  const auto value = parseInteger<long>(setting(registry, name));
  if (value && *value >= least && *value <= longestTimeout) seconds = std::chrono::seconds(*value);
}

}  // namespace

ConnectionOptions loadConnectionOptions(const settings::Registry& registry) {
  ConnectionOptions options;
  readSeconds(registry, "ConnectionTimeout", 1, options.connectionTimeout);
  readSeconds(registry, "CommandTimeout", 0, options.commandTimeout);
  options.encrypt = setting(registry, "Encrypt") != "0";
  options.readOnlyIntent = equalsIgnoringAsciiCase(setting(registry, "ApplicationIntent"), "ReadOnly");
  options.certificateAuthorities = setting(registry, "CertificateAuthorities");
  options.trustServerCertificate = setting(registry, "TrustServerCertificate") == "1";
  options.driver = settings::GetEnvironment("KORVEL_ODBC_DRIVER");
  return options;
}

}  // namespace korvel::db
