#pragma once

#include "evidence/exceptions.h"
#include "settings/settings_backend.h"

namespace korvel::control {

// The hours in which work is done at the plant: a choice of the user's, which is remembered.

/// What the settings store says; the usual hours where it says nothing that can be read. Throws Error where the store
/// cannot be read.
[[nodiscard]] evidence::WorkingHours storedWorkingHours(settings::SettingsBackend& backend);
/// The choice holds until the program ends even where it cannot be stored. Throws Error then.
void chooseWorkingHours(const evidence::WorkingHours& hours);

}  // namespace korvel::control
