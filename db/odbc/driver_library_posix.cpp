#include <dlfcn.h>
#include <sqlext.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "db/odbc/driver_versions.h"

namespace korvel::db::odbc {

namespace fs = std::filesystem;

std::string libraryFile(const std::string& library) {
  if (library.empty() || library.starts_with('/')) return library;
  // Where the driver manager looks first: in its drivers' folder, then beside itself.
  Dl_info manager{};
  if (::dladdr(reinterpret_cast<const void*>(&SQLDrivers), &manager) == 0) return {};
  const fs::path folder = fs::path(manager.dli_fname).parent_path();
  for (const fs::path& place : {folder / "odbc", folder}) {
    std::error_code failure;
    const fs::path file = place / pathFromUtf8(library);
    if (fs::is_regular_file(files::status(file, failure))) return utf8FromPath(file);
  }
  return {};
}

}  // namespace korvel::db::odbc
