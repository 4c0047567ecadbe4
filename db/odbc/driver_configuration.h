#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "db/odbc/driver_login.h"
#include "db/odbc/odbc_driver.h"

namespace korvel::db::odbc {

/// The drivers of the system that the program runs on.
[[nodiscard]] const DriverPlatform& driverPlatform() noexcept;

/// The configuration that a driver needs beside its connection text, for the time of one login: FreeTDS checks a
/// server's certificate only when a file tells it to. The file lies in a new folder of the user's own and is removed,
/// and the variable that names it restored, by destruction. One login at a time.
class DriverConfiguration {
 public:
  explicit DriverConfiguration(const LoginRequest& request);
  ~DriverConfiguration();
  DriverConfiguration(const DriverConfiguration&) = delete;
  DriverConfiguration& operator=(const DriverConfiguration&) = delete;

 private:
  void removeFolder() noexcept;

  std::filesystem::path folder_;
  std::optional<std::string> before_;
};

}  // namespace korvel::db::odbc
