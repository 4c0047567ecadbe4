#pragma once

#include "settings/settings_backend.h"

namespace korvel::settings {

/// Settings in the registry below HKEY_LOCAL_MACHINE, the machine-wide hive. Writing there needs administrative rights
/// on most systems; no other hive is tried without them.
class RegistryAdvapi32 : public SettingsBackend {
 public:
  Win32Error openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) override;
  Win32Error createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) override;
};

}  // namespace korvel::settings
