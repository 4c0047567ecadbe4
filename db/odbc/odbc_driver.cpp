#include "db/odbc/odbc_driver.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text.h"
#include "base/utf16.h"
#include "db/odbc/odbc_handle.h"
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

/// The family of a driver that is not in the table, by its name or the name of its file.
DriverFamily familyOf(std::string_view driver, const DriverPlatform& platform) {
  for (const KnownDriver& known : platform.known)
    if (equalsIgnoringAsciiCase(driver, known.name)) return known.family;
  const bool freeTds = contains(driver, "freetds") || contains(driver, "tdsodbc");
  return freeTds ? DriverFamily::freeTds : DriverFamily::vendor;
}

}  // namespace

std::vector<std::string> installedDrivers() {
  const Environment environment = makeEnvironment();
  std::vector<std::string> names;
  std::array<SQLWCHAR, 512> name{};
  std::array<SQLWCHAR, 2> attributes{};
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT attributesLength = 0;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
    const auto result =
        SQLDriversW(environment.get(), direction, name.data(), static_cast<SQLSMALLINT>(name.size()), &nameLength,
                    attributes.data(), static_cast<SQLSMALLINT>(attributes.size()), &attributesLength);
    if (!SQL_SUCCEEDED(result)) return names;
    const auto units = std::min<std::size_t>(static_cast<std::size_t>(nameLength), name.size() - 1);
    names.push_back(utf8FromUtf16({reinterpret_cast<const char16_t*>(name.data()), units}));
  }
}

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
