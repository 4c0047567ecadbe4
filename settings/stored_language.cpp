#include "settings/stored_language.h"

#include <string>

#include "settings/registry.h"

namespace korvel::settings {

LanguageOffset storedLanguage(SettingsBackend& backend) {
  return LanguageOffset(
      Registry(backend).GetSetting(std::string(applicationName), std::string(viewerSection), "Language", "0"));
}

}  // namespace korvel::settings
