#include <cstdlib>

#include "settings/registry.h"
#include "settings/registry_file.h"

namespace korvel::settings {

std::string GetEnvironment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::string{} : std::string{value};
}

std::unique_ptr<SettingsBackend> platformBackend() {
  return std::make_unique<RegistryFile>(registryFilePath());
}

}  // namespace korvel::settings
