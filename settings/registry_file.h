#pragma once

#include <chrono>
#include <filesystem>

#include "settings/settings_backend.h"
#include "settings/shared_file.h"

namespace korvel::settings {

/// Settings in a text file in the format of a registry export (see RegistryDocument), with the key paths of the
/// machine-wide hive. Concurrent writers do not lose each other's changes: every change reads the file anew and
/// replaces it atomically, under a lock. A section opened for reading shows the file as it was when it was opened.
///
/// A file that is missing is a missing section (2), and one without a byte an empty store. One that cannot be read or
/// parsed (1009) is a failure to open, never an empty store.
class RegistryFile : public SettingsBackend {
 public:
  /// `file` and its folders need not be there until something is written. With an empty path there are no settings, and
  /// none can be saved. Writing fails (33) when another program locks the file for longer than `patience`.
  explicit RegistryFile(const std::filesystem::path& file,
                        std::chrono::milliseconds patience = SharedFile::usualPatience)
      : file_(file, patience) {}

  Win32Error openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) override;
  Win32Error createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) override;
  [[nodiscard]] std::string file() const override;

 private:
  SharedFile file_;
};

/// The settings file of this process: the one that KORVEL_REGISTRY names, otherwise the user's own,
/// korvel/registry.reg in the configuration folder.
[[nodiscard]] std::filesystem::path registryFilePath();

}  // namespace korvel::settings
