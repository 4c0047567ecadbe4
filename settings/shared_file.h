#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/system_errors.h"

namespace korvel::settings {

/// A text file that several processes and threads read and rewrite. All functions answer with an error number of
/// Windows.
class SharedFile {
 public:
  /// How long a writer waits for the lock of another: far longer than a change takes, and short enough that the
  /// program does not seem to hang.
  static constexpr std::chrono::milliseconds usualPatience{5000};

  /// A relative `path` means the folder that is current now.
  explicit SharedFile(const std::filesystem::path& path, std::chrono::milliseconds patience = usualPatience);

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// The file as one writer left it, never a mixture. Only a regular file is read: a pipe would block.
  [[nodiscard]] Win32Error read(std::string& bytes) const;

  /// The right to rewrite the file, held by one holder at a time. The lock is a file of its own beside the settings
  /// (their own file is replaced by every write, so a lock on it would lock nothing); it stays there when the lock is
  /// released.
  class Lock {
   public:
    /// Waits for the lock; creates the file's folders and the lock file if need be. Fails where the file could not be
    /// rewritten: no right to write to it or to its folder, or a holder (33) that outlasts the file's patience, as a
    /// stopped process would.
    [[nodiscard]] Win32Error take(const SharedFile& file);

    Lock() = default;
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    /// Replaces the file atomically. Only while the lock is held.
    [[nodiscard]] Win32Error write(std::string_view bytes) const;

   private:
    std::filesystem::path target_;
    int descriptor_ = -1;
  };

 private:
  std::filesystem::path path_;
  std::chrono::milliseconds patience_;
};

/// Creates the missing folders of `folder`, for the user alone. Returns the system's error number, 0 for success.
[[nodiscard]] int createPrivateFolders(const std::filesystem::path& folder);

/// The folder in which programs keep the user's configuration; empty where none is known.
[[nodiscard]] std::filesystem::path configurationFolder();
/// The folder in which programs keep what they leave behind for the user; empty where none is known.
[[nodiscard]] std::filesystem::path stateFolder();

}  // namespace korvel::settings
