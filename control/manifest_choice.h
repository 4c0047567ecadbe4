#pragma once

#include "settings/settings_backend.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class CommandPopup;
class MessageBoxes;

// Whether files that the user gets have a manifest beside them: a choice of the user's, which is remembered.

/// What the settings store says; off where it says nothing. Throws Error where it cannot be read.
[[nodiscard]] bool storedManifestChoice(settings::SettingsBackend& backend);

/// Adds the choice to the menu of a list. All must outlive the entry.
void addManifestEntry(CommandPopup& menu, AuditViewer& viewer, const MessageBoxes& messages);

}  // namespace korvel::control
