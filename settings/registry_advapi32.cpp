// The registry of Windows. The wide forms of the calls: our texts are UTF-8, and the narrow forms would lose what the
// machine's code page does not have.
#include "settings/registry_advapi32.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>

#include "base/wide_text_windows.h"
#include "settings/registry_value.h"

namespace korvel::settings {

namespace {

/// A path or name as the calls take it, up to its terminator: a NUL inside would cut it and address another.
Win32Error wideName(const std::string& name, std::wstring& wide) {
  if (name.find('\0') != std::string::npos) return Win32Error::invalidParameter;
  auto converted = wideFromUtf8(name);
  if (!converted) return Win32Error::noUnicodeTranslation;
  wide = *std::move(converted);
  return Win32Error::success;
}

class Advapi32Key : public SettingsKey {
 public:
  explicit Advapi32Key(HKEY handle) : handle_(handle) {}
  ~Advapi32Key() override { RegCloseKey(handle_); }
  Advapi32Key(const Advapi32Key&) = delete;
  Advapi32Key& operator=(const Advapi32Key&) = delete;

  Win32Error querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) override {
    RegistryValue value;
    const Win32Error failure = query(valueName, value);
    type = value.type;
    size = static_cast<std::uint32_t>(value.bytes.size());
    return failure;
  }

  Win32Error queryData(const std::string& valueName, std::vector<char>& buffer) override {
    RegistryValue value;
    const Win32Error failure = query(valueName, value);
    if (failure != Win32Error::success) return failure;
    if (buffer.size() < value.bytes.size()) return Win32Error::moreData;
    std::copy(value.bytes.begin(), value.bytes.end(), buffer.begin());
    return Win32Error::success;
  }

  Win32Error setString(const std::string& valueName, const std::string& value) override {
    std::wstring name;
    const Win32Error failure = wideName(valueName, name);
    if (failure != Win32Error::success) return failure;
    const auto data = wideFromUtf8(value);
    if (!data) return Win32Error::noUnicodeTranslation;
    // The length counts no terminator; deliberate. A query counts one all the same.
    const auto length = static_cast<DWORD>(data->size() * sizeof(wchar_t));
    return static_cast<Win32Error>(
        RegSetValueExW(handle_, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(data->c_str()), length));
  }

 private:
  /// Type and bytes of a value, a string as UTF-8. The size of a converted string is known only with its data, so both
  /// queries read it whole.
  Win32Error query(const std::string& valueName, RegistryValue& value) const {
    std::wstring name;
    const Win32Error failure = wideName(valueName, name);
    if (failure != Win32Error::success) return failure;
    DWORD type = REG_NONE;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(handle_, name.c_str(), nullptr, &type, nullptr, &size);
    // The value may grow between two calls.
    while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
      value.bytes.resize(size);
      status =
          RegQueryValueExW(handle_, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(value.bytes.data()), &size);
      if (status == ERROR_SUCCESS) {
        value.bytes.resize(size);
        break;
      }
    }
    value.type = type;
    if (status == ERROR_SUCCESS && type == REG_SZ) value.bytes = reportedString(value.bytes);
    return static_cast<Win32Error>(status);
  }

  HKEY handle_;
};

/// Programs of 32 bits have the settings of those of 64.
constexpr REGSAM sharedKeys = KEY_WOW64_64KEY;

}  // namespace

Win32Error RegistryAdvapi32::openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  std::wstring path;
  const Win32Error failure = wideName(keyPath, path);
  if (failure != Win32Error::success) return failure;
  HKEY handle = nullptr;
  const LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ | sharedKeys, &handle);
  if (status == ERROR_SUCCESS) key = std::make_unique<Advapi32Key>(handle);
  return static_cast<Win32Error>(status);
}

Win32Error RegistryAdvapi32::createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  std::wstring path;
  const Win32Error failure = wideName(keyPath, path);
  if (failure != Win32Error::success) return failure;
  HKEY handle = nullptr;
  const LSTATUS status = RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         KEY_ALL_ACCESS | sharedKeys, nullptr, &handle, nullptr);
  if (status == ERROR_SUCCESS) key = std::make_unique<Advapi32Key>(handle);
  return static_cast<Win32Error>(status);
}

}  // namespace korvel::settings
