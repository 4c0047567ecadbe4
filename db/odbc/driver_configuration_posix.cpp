#include <stdlib.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"
#include "db/odbc/driver_configuration.h"
#include "db/odbc/odbc_driver.h"

namespace korvel::db::odbc {

namespace {

constexpr const char* configurationVariable = "FREETDSCONF";

/// The environment belongs to the whole process. Logins wait for each other, but other threads read it meanwhile: a
/// variable that is there already gets another value in its place, while a new one may move all of them. So it is there
/// from the start of the program on; FreeTDS takes an empty one for none.
void setVariable(const char* value) noexcept {
  ::setenv(configurationVariable, value, 1);  // NOLINT(concurrency-mt-unsafe): see above
}

[[maybe_unused]] const bool variableIsThere = [] {
  if (std::getenv(configurationVariable) == nullptr) setVariable("");
  return true;
}();

}  // namespace

const DriverPlatform& driverPlatform() noexcept {
  return posixDrivers;
}

DriverConfiguration::DriverConfiguration(const LoginRequest& request) {
  if (!needsConfiguration(request)) return;
  const std::string text = freeTdsConfiguration(request);
  std::error_code noFolder;
  std::string name = (std::filesystem::temp_directory_path(noFolder) / "korvel-login-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw systemError(errno, "cannot create a folder for the login's settings");
  folder_ = name;
  const auto file = folder_ / "server.conf";
  try {
    writeFileAtomically(file, text);
  } catch (...) {
    removeFolder();
    throw;
  }
  // The driver reads the variable while it connects and offers no other way.
  if (const char* value = std::getenv(configurationVariable)) before_ = value;
  setVariable(file.c_str());
}

DriverConfiguration::~DriverConfiguration() {
  if (folder_.empty()) return;
  setVariable(before_ ? before_->c_str() : "");
  removeFolder();
}

void DriverConfiguration::removeFolder() noexcept {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace korvel::db::odbc
