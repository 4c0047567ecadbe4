#include "settings/registry.h"
#include "settings/registry_file.h"

namespace korvel::settings {

std::unique_ptr<SettingsBackend> platformBackend() {
  return std::make_unique<RegistryFile>(registryFilePath());
}

}  // namespace korvel::settings
