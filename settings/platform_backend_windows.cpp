#include "settings/registry.h"
#include "settings/registry_advapi32.h"

namespace korvel::settings {

std::unique_ptr<SettingsBackend> platformBackend() {
  return std::make_unique<RegistryAdvapi32>();
}

}  // namespace korvel::settings
