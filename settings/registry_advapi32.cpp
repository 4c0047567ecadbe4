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
std::uint32_t wideName(const std::string& name, std::wstring& wide) {
  if (name.find('\0') != std::string::npos) return ERROR_INVALID_PARAMETER;
  auto converted = wideFromUtf8(name);
  if (!converted) return ERROR_NO_UNICODE_TRANSLATION;
  wide = *std::move(converted);
  return errorSuccess;
}

class Advapi32Key : public SettingsKey {
 public:
  explicit Advapi32Key(HKEY handle) : handle_(handle) {}
  ~Advapi32Key() override { RegCloseKey(handle_); }
  Advapi32Key(const Advapi32Key&) = delete;
  Advapi32Key& operator=(const Advapi32Key&) = delete;

  std::uint32_t querySize(const std::string& valueName, std::uint32_t& type, std::uint32_t& size) override {
    RegistryValue value;
    const std::uint32_t failure = query(valueName, value);
    type = value.type;
    size = static_cast<std::uint32_t>(value.bytes.size());
    return failure;
  }

  std::uint32_t queryData(const std::string& valueName, std::vector<char>& buffer) override {
    RegistryValue value;
    const std::uint32_t failure = query(valueName, value);
    if (failure != errorSuccess) return failure;
    if (buffer.size() < value.bytes.size()) return ERROR_MORE_DATA;
    std::copy(value.bytes.begin(), value.bytes.end(), buffer.begin());
    return errorSuccess;
  }

  std::uint32_t setString(const std::string& valueName, const std::string& value) override {
    std::wstring name;
    const std::uint32_t failure = wideName(valueName, name);
    if (failure != errorSuccess) return failure;
    const auto data = wideFromUtf8(value);
    if (!data) return ERROR_NO_UNICODE_TRANSLATION;
    // The length counts no terminator; deliberate. A query counts one all the same.
    const auto length = static_cast<DWORD>(data->size() * sizeof(wchar_t));
    return static_cast<std::uint32_t>(
        RegSetValueExW(handle_, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(data->c_str()), length));
  }

 private:
  /// Type and bytes of a value, a string as UTF-8. The size of a converted string is known only with its data, so both
  /// queries read it whole.
  std::uint32_t query(const std::string& valueName, RegistryValue& value) const {
    std::wstring name;
    const std::uint32_t failure = wideName(valueName, name);
    if (failure != errorSuccess) return failure;
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
    return static_cast<std::uint32_t>(status);
  }

  HKEY handle_;
};

}  // namespace

std::uint32_t RegistryAdvapi32::openForReading(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  std::wstring path;
  const std::uint32_t failure = wideName(keyPath, path);
  if (failure != errorSuccess) return failure;
  HKEY handle = nullptr;
  const LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &handle);
  if (status == ERROR_SUCCESS) key = std::make_unique<Advapi32Key>(handle);
  return static_cast<std::uint32_t>(status);
}

std::uint32_t RegistryAdvapi32::createOrOpen(const std::string& keyPath, std::unique_ptr<SettingsKey>& key) {
  std::wstring path;
  const std::uint32_t failure = wideName(keyPath, path);
  if (failure != errorSuccess) return failure;
  HKEY handle = nullptr;
  const LSTATUS status = RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         KEY_ALL_ACCESS, nullptr, &handle, nullptr);
  if (status == ERROR_SUCCESS) key = std::make_unique<Advapi32Key>(handle);
  return static_cast<std::uint32_t>(status);
}

}  // namespace korvel::settings
