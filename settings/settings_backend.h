#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/system_errors.h"

namespace korvel::settings {

/// Type codes of stored values, as the registry numbers them.
enum class ValueType : std::uint32_t { string = 1, binary = 3, dword = 4 };

/// One opened section. Closed by destruction. Every operation answers with an error number of Windows.
class SettingsKey {
 public:
  virtual ~SettingsKey() = default;
  /// Type and size in bytes of a value; the size of a string counts one terminating NUL, also when the writer counted
  /// none.
  virtual Win32Error querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) = 0;
  /// The bytes of a value into `buffer`, which the caller has sized with querySize.
  virtual Win32Error queryData(const std::string& valueName, std::vector<char>& buffer) = 0;
  /// Stores `value` as a string; the length that is stored counts no terminator.
  virtual Win32Error setString(const std::string& valueName, const std::string& value) = 0;
};

/// Where settings live: the machine-wide hive on Windows, a file elsewhere. `keyPath` is
/// "SOFTWARE\<application>\<section>".
class SettingsBackend {
 public:
  virtual ~SettingsBackend() = default;
  virtual Win32Error openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) = 0;
  virtual Win32Error createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) = 0;
  /// The file that holds the settings, for messages about it; empty where they are no file of the user's.
  [[nodiscard]] virtual std::string file() const { return {}; }
};

}  // namespace korvel::settings
