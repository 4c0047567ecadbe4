#include <windows.h>

#include "base/wide_text_windows.h"
#include "settings/registry.h"
#include "settings/registry_advapi32.h"

namespace korvel::settings {

std::string GetEnvironment(const std::string& name) {
  const auto wideName = wideFromUtf8(name);
  if (!wideName) return {};
  std::wstring value;
  // The value may grow between two calls; each gives the size that it needs, its terminator counted.
  for (DWORD needed = GetEnvironmentVariableW(wideName->c_str(), nullptr, 0); needed > value.size();) {
    value.resize(needed);
    needed = GetEnvironmentVariableW(wideName->c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (needed < value.size()) {
      value.resize(needed);
      break;
    }
  }
  return utf8FromWide(value);
}

std::unique_ptr<SettingsBackend> platformBackend() {
  return std::make_unique<RegistryAdvapi32>();
}

}  // namespace korvel::settings
