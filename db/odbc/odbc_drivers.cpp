#include "db/odbc/odbc_drivers.h"

#include <sqlucode.h>

#include <algorithm>
#include <array>

#include "base/utf16.h"

namespace korvel::db::odbc {

std::vector<std::string> installedDrivers(const Environment& environment) {
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

}  // namespace korvel::db::odbc
