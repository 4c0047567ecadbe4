#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvel::settings {

/// Type codes of stored values, as the registry numbers them.
enum class ValueType : std::uint32_t { string = 1, binary = 3, dword = 4 };

/// System error numbers that callers tell apart.
inline constexpr std::uint32_t errorSuccess = 0;
inline constexpr std::uint32_t errorFileNotFound = 2;
inline constexpr std::uint32_t errorAccessDenied = 5;

/// One opened section. Closed by destruction. Every operation answers with a system error number, 0 for success.
class SettingsKey {
 public:
  virtual ~SettingsKey() = default;
  /// Type and size in bytes of a value; the size of a string counts one terminating NUL, also when the writer counted
  /// none.
  virtual std::uint32_t querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) = 0;
  /// The bytes of a value into `buffer`, which the caller has sized with querySize.
  virtual std::uint32_t queryData(const std::string& valueName, std::vector<char>& buffer) = 0;
  /// Stores `value` as a string; the length that is stored counts no terminator.
  virtual std::uint32_t setString(const std::string& valueName, const std::string& value) = 0;
};

/// Where settings live: the machine-wide hive on Windows, a file elsewhere. `keyPath` is
/// "SOFTWARE\<application>\<section>".
class SettingsBackend {
 public:
  virtual ~SettingsBackend() = default;
  virtual std::uint32_t openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) = 0;
  virtual std::uint32_t createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) = 0;
  /// The file that holds the settings, for messages about it; empty where they are no file of the user's.
  [[nodiscard]] virtual std::string file() const { return {}; }
};

}  // namespace korvel::settings
