#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "settings/settings_backend.h"
#include "settings/string_table.h"

namespace korvel::settings {

/// Base of the numbers of errors that objects define; every settings error is this plus a small number.
inline constexpr std::int32_t objectErrorBase = static_cast<std::int32_t>(0x80040000U);

inline constexpr std::string_view applicationName = "Molvane";
inline constexpr std::string_view viewerSection = "AuditViewer";

/// The control's only persistent store of user settings. Holds no state between calls: each call opens its section,
/// does its work and closes it. Failures are raised as Error; nothing is ever shown. Both operations raise
/// objectErrorBase + 1000, 1001 or 1002 where the application's name, the section or the key is empty or only blanks.
class Registry {
 public:
  /// Uses `backend`, which must outlive the object.
  explicit Registry(SettingsBackend& backend) : backend_(backend) {}

  /// The stored string, or `fallback` where the section or the value is missing or the value cannot be read. Raises
  /// objectErrorBase + 2000 + the system error number where the section cannot be opened for another reason, and
  /// objectErrorBase + 2000 + the type where the value is no string.
  [[nodiscard]] std::string GetSetting(const std::string& appName, const std::string& section, const std::string& key,
                                       const std::string& fallback) const;
  /// Creates the section if need be and stores the string. Raises objectErrorBase + 2000 + the system error number
  /// where either fails: 5 without the right to write, 33 while another program holds the store locked.
  void SaveSetting(const std::string& appName, const std::string& section, const std::string& key,
                   const std::string& value) const;

 private:
  SettingsBackend& backend_;
};

/// The language that the viewer is set to: the setting "Language" of its section, "0" where there is none. Throws Error
/// where the store cannot be read.
[[nodiscard]] LanguageOffset storedLanguage(SettingsBackend& backend);

/// The value of a process environment variable, or "" when it is not set.
[[nodiscard]] std::string GetEnvironment(const std::string& name);

/// The platform's own store: the machine-wide registry on Windows, otherwise the per-user settings file.
[[nodiscard]] std::unique_ptr<SettingsBackend> platformBackend();

}  // namespace korvel::settings
