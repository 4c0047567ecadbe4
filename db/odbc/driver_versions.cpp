#include "db/odbc/driver_versions.h"

#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/utf16.h"
#include "db/odbc/odbc_handle.h"

namespace korvel::db::odbc {

namespace {

/// What FreeTDS writes before its version.
constexpr std::string_view versionMark = "freetds v";
constexpr std::string_view libraryAttribute = "Driver=";

std::string utf8Of(const SQLWCHAR* text, SQLSMALLINT length, std::size_t room) {
  const auto units = std::min<std::size_t>(static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)), room - 1);
  return utf8FromUtf16({reinterpret_cast<const char16_t*>(text), units});
}

/// The value of "Driver" among attributes that end with a null each.
std::string libraryIn(std::string_view attributes) {
  while (!attributes.empty()) {
    const std::size_t end = std::min(attributes.find('\0'), attributes.size());
    const std::string_view attribute = attributes.substr(0, end);
    if (attribute.size() > libraryAttribute.size() &&
        equalsIgnoringAsciiCase(attribute.substr(0, libraryAttribute.size()), libraryAttribute))
      return std::string(attribute.substr(libraryAttribute.size()));
    attributes.remove_prefix(std::min(end + 1, attributes.size()));
  }
  return {};
}

}  // namespace

std::string driverManagerVersion() {
  const Environment environment = makeEnvironment();
  const ConnectionHandle connection(environment.get());
  std::array<SQLWCHAR, 64> text{};
  SQLSMALLINT bytes = 0;
  // The one question about a connection that needs none.
  const auto result = SQLGetInfoW(connection.get(), SQL_DM_VER, text.data(),
                                  static_cast<SQLSMALLINT>(text.size() * sizeof(SQLWCHAR)), &bytes);
  if (!SQL_SUCCEEDED(result)) return {};
  return utf8Of(text.data(), static_cast<SQLSMALLINT>(static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR)), text.size());
}

std::vector<DriverVersion> driverVersions() {
  const Environment environment = makeEnvironment();
  std::vector<DriverVersion> drivers;
  std::array<SQLWCHAR, 512> name{};
  std::array<SQLWCHAR, 4096> attributes{};
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT attributesLength = 0;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
    const auto result =
        SQLDriversW(environment.get(), direction, name.data(), static_cast<SQLSMALLINT>(name.size()), &nameLength,
                    attributes.data(), static_cast<SQLSMALLINT>(attributes.size()), &attributesLength);
    if (!SQL_SUCCEEDED(result)) return drivers;
    DriverVersion driver;
    driver.name = utf8Of(name.data(), nameLength, name.size());
    driver.library = libraryIn(utf8Of(attributes.data(), attributesLength, attributes.size()));
    const std::string file = libraryFile(driver.library);
    if (!file.empty()) {
      driver.library = file;
      driver.version = versionInFile(file);
    }
    drivers.push_back(std::move(driver));
  }
}

std::string versionInFile(const std::string& file) {
  std::string bytes;
  try {
    bytes = readFile(pathFromUtf8(file));
  } catch (const Error&) {
    return {};  // whose library cannot be read is known by its name alone
  }
  const std::size_t mark = bytes.find(versionMark);
  if (mark == std::string::npos) return {};
  const std::size_t begin = mark + versionMark.size();
  const std::size_t end = bytes.find_first_not_of("0123456789.", begin);
  return bytes.substr(begin, std::min(end, bytes.size()) - begin);
}

}  // namespace korvel::db::odbc
