#include <windows.h>

#include <stdexcept>
#include <string>

#include "tests/support/own_settings.h"

namespace korvel::test {

struct OwnSettings::Store {
  std::wstring name = L"Software\\korvel-test-" + std::to_wstring(GetCurrentProcessId());
};

OwnSettings::OwnSettings(const std::filesystem::path& /*folder*/) : store_(new Store) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, store_->name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
          ERROR_SUCCESS ||
      RegOverridePredefKey(HKEY_LOCAL_MACHINE, key) != ERROR_SUCCESS)
    throw std::runtime_error("no settings of the test's own");
  RegCloseKey(key);
}

OwnSettings::~OwnSettings() {
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegDeleteTreeW(HKEY_CURRENT_USER, store_->name.c_str());
}

}  // namespace korvel::test
