#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// Writing and removing what the registry holds of the control, below a key that holds classes.
namespace korvel::ocx {

/// One value; its key is created if it has no value of a name.
struct RegistryEntry {
  std::wstring key;
  /// Empty for the key's own value.
  std::wstring name;
  std::wstring value;
};

/// Writes all `entries` below `classes`. When one cannot be written, all that was written before is as it was again.
/// Returns the error of the system.
[[nodiscard]] LSTATUS writeEntries(HKEY classes, const std::vector<RegistryEntry>& entries);

/// Removes `key` with everything below it. A key that does not exist is no error.
[[nodiscard]] LSTATUS removeKey(HKEY classes, const std::wstring& key);

/// Removes `key` if it has neither keys nor values. Returns whether it is gone, or was not there.
bool removeIfEmpty(HKEY classes, const std::wstring& key);

/// The value of `key` itself, empty where there is none.
[[nodiscard]] std::wstring valueOf(HKEY classes, const std::wstring& key);

/// An open key, closed at the end of its life.
class OpenKey {
 public:
  explicit OpenKey(HKEY key) : key_(key) {}
  ~OpenKey() { ::RegCloseKey(key_); }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  [[nodiscard]] HKEY get() const noexcept { return key_; }

 private:
  HKEY key_;
};

}  // namespace korvel::ocx
