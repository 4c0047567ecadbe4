#pragma once

#include "settings/settings_backend.h"
#include "settings/string_table.h"

namespace korvel::settings {

/// The language that the viewer is set to: the setting "Language" of its section, "0" where there is none. Throws Error
/// where the store cannot be read.
[[nodiscard]] LanguageOffset storedLanguage(SettingsBackend& backend);

}  // namespace korvel::settings
