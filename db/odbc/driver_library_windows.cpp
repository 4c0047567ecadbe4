#include <string>

#include "base/paths.h"
#include "db/odbc/driver_versions.h"

namespace korvel::db::odbc {

std::string libraryFile(const std::string& library) {
  // The driver manager there stores whole paths.
  return isAbsolute(pathFromUtf8(library)) ? library : std::string();
}

}  // namespace korvel::db::odbc
