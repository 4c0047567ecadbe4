#include "db/odbc/driver_login.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "base/utf16.h"
#include "db/odbc/driver_configuration.h"
#include "settings/string_table.h"

namespace korvel::db::odbc {

namespace {

constexpr std::int32_t invalidParameter = 87;

using Attributes = std::vector<std::pair<std::string, std::string>>;

/// The longest name that the server gives anything; drivers cut longer ones and would open something else.
constexpr std::size_t longestName = 128;

/// Whether braces around a value make every driver read it as it is. A closing brace ends the value for one driver and
/// belongs to it for another, doubled or not.
bool canBeQuoted(std::string_view value) {
  return value.find_first_of(std::string_view("}\0", 2)) == std::string_view::npos;
}

std::string joined(const Attributes& attributes) {
  std::string text;
  for (const auto& [key, value] : attributes) {
    if (!canBeQuoted(value)) throw settings::localizedError(invalidParameter, "failure.notInConnection", {value});
    text += key;
    text += "={";
    text += value;
    text += "};";
  }
  return text;
}

Attributes freeTdsAttributes(const LoginRequest& request, const DriverPlatform& platform) {
  Attributes attributes;
  if (needsConfiguration(request)) {
    // Without our section it would read one of another file, which may not require encryption or may trust any server.
    if (!platform.givesConfiguration)
      throw settings::localizedError(invalidParameter, "failure.driverChecksNothing", {request.driver.name});
    attributes.emplace_back("Servername", request.address.host);
  } else {
    // Host and port apart: together they would leave a NUL in the server name of the login.
    attributes.emplace_back("Server", request.address.host);
    attributes.emplace_back("Port", std::to_string(request.address.port));
    attributes.emplace_back("Encryption", request.options.encrypt ? "require" : "request");
    attributes.emplace_back("TDS_Version", "7.4");
  }
  if (!request.servicePrincipal.empty()) attributes.emplace_back("ServerSPN", request.servicePrincipal);
  if (request.options.readOnlyIntent) attributes.emplace_back("ApplicationIntent", "ReadOnly");
  return attributes;
}

Attributes commonVendorAttributes(const LoginRequest& request, const DriverPlatform& platform) {
  const ConnectionOptions& options = request.options;
  // This driver knows the system's authorities only, and would refuse the server without mentioning the setting.
  if (options.encrypt && !options.trustServerCertificate && !options.certificateAuthorities.empty())
    throw settings::localizedError(
        invalidParameter,
        platform.givesConfiguration ? "failure.authoritiesNotForDriver" : "failure.authoritiesNotForSystem",
        {request.driver.name});
  return {{"Server", request.address.host + "," + std::to_string(request.address.port)},
          {"Encrypt", options.encrypt ? "yes" : "no"}};
}

Attributes vendorAttributes(const LoginRequest& request, const DriverPlatform& platform) {
  Attributes attributes = commonVendorAttributes(request, platform);
  attributes.emplace_back("TrustServerCertificate", request.options.trustServerCertificate ? "yes" : "no");
  // The listener of an availability group may stand in several subnets: all its addresses are tried at once.
  attributes.emplace_back("MultiSubnetFailover", "yes");
  if (request.options.readOnlyIntent) attributes.emplace_back("ApplicationIntent", "ReadOnly");
  return attributes;
}

/// Without a choice about certificates: it always checks the one that it encrypts with. Named pipes, which it might
/// try, have no port.
Attributes oldVendorAttributes(const LoginRequest& request, const DriverPlatform& platform) {
  // It would take the word for a mistake and connect to the primary: readers were to be kept off that.
  if (request.options.readOnlyIntent)
    throw settings::localizedError(invalidParameter, "failure.noIntentForDriver", {request.driver.name});
  Attributes attributes = commonVendorAttributes(request, platform);
  attributes.emplace_back("Network", "DBMSSOCN");
  return attributes;
}

/// The words of each family.
struct Words {
  DriverFamily family;
  Attributes (*of)(const LoginRequest& request, const DriverPlatform& platform);
};
constexpr std::array<Words, 3> words = {{{DriverFamily::vendor, vendorAttributes},
                                         {DriverFamily::oldVendor, oldVendorAttributes},
                                         {DriverFamily::freeTds, freeTdsAttributes}}};

Attributes attributesOf(const LoginRequest& request, const DriverPlatform& platform) {
  const auto* const found = std::find_if(words.begin(), words.end(),
                                         [&](const Words& entry) { return entry.family == request.driver.family; });
  return found->of(request, platform);
}

}  // namespace

std::string driverText(const LoginRequest& request) {
  return driverTextOn(driverPlatform(), request);
}

std::string driverTextOn(const DriverPlatform& platform, const LoginRequest& request) {
  if (utf16FromUtf8(request.database).size() > longestName)
    throw settings::localizedError(invalidParameter, "failure.notInConnection", {request.database});
  Attributes attributes = attributesOf(request, platform);
  attributes.insert(attributes.begin(), {"Driver", request.driver.name});
  if (!request.database.empty()) attributes.emplace_back("Database", request.database);
  attributes.emplace_back("Trusted_Connection", "yes");
  attributes.emplace_back("APP", "Korvel Audit Viewer");
  return joined(attributes);
}

bool needsConfiguration(const LoginRequest& request) {
  return request.driver.family == DriverFamily::freeTds && request.options.encrypt &&
         !request.options.trustServerCertificate;
}

bool checksCertificates(const LoginRequest& request) {
  return request.driver.family == DriverFamily::freeTds ? needsConfiguration(request) : request.driver.isKnown;
}

std::string freeTdsConfiguration(const LoginRequest& request) {
  const std::string& file = request.options.certificateAuthorities;
  if (std::any_of(file.begin(), file.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20U; }))
    throw settings::localizedError(invalidParameter, "failure.notInConnection", {file});
  return "[" + request.address.host + "]\n\thost = " + request.address.host +
         "\n\tport = " + std::to_string(request.address.port) +
         "\n\ttds version = 7.4\n\tencryption = require\n\tca file = " + (file.empty() ? "system" : file) +
         "\n\tcheck certificate hostname = yes\n";
}

}  // namespace korvel::db::odbc
