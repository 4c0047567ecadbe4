#include "db/odbc/driver_choice.h"

#include <algorithm>
#include <cstdint>

#include "base/text.h"
#include "settings/string_table.h"

namespace korvel::db::odbc {

namespace {

constexpr std::int32_t driverNotFound = 126;

bool contains(std::string_view text, std::string_view part) {
  return caseFolded(text).find(part) != std::string::npos;
}

bool isKnown(std::string_view driver, const DriverPlatform& platform) {
  return std::any_of(platform.known.begin(), platform.known.end(),
                     [&](const KnownDriver& known) { return equalsIgnoringAsciiCase(driver, known.name); });
}

/// The family of a driver that nobody has told us of, by its name or its file's.
DriverFamily familyOf(std::string_view driver, const DriverPlatform& platform) {
  for (const KnownDriver& known : platform.known)
    if (equalsIgnoringAsciiCase(driver, known.name)) return known.family;
  const bool freeTds = contains(driver, "freetds") || contains(driver, "tdsodbc");
  return freeTds ? DriverFamily::freeTds : DriverFamily::vendor;
}

}  // namespace

Driver chooseDriver(const std::vector<std::string>& installed, std::string_view wanted,
                    const DriverPlatform& platform) {
  if (!wanted.empty()) {
    const DriverFamily family = familyOf(wanted, platform);
    return {std::string(wanted), family, family == DriverFamily::freeTds || isKnown(wanted, platform)};
  }
  for (const KnownDriver& known : platform.known) {
    const auto found = std::find_if(installed.begin(), installed.end(),
                                    [&](const std::string& name) { return equalsIgnoringAsciiCase(name, known.name); });
    if (found != installed.end()) return {*found, known.family, true};
  }
  throw settings::localizedError(driverNotFound, "failure.noDriver");
}

}  // namespace korvel::db::odbc
