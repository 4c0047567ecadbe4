#include "control/manifest_choice.h"

#include <string>

#include "control/command_menus.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"
#include "settings/registry.h"

namespace korvel::control {

namespace {

constexpr const char* settingName = "ExportManifest";
constexpr const char* chosen = "1";
constexpr const char* notChosen = "0";

/// The choice holds until the program ends even where it cannot be stored.
void choose(bool wanted) {
  libraryState().writesManifests = wanted;
  const auto backend = platform().openSettings();
  settings::Registry(*backend).SaveSetting(std::string(settings::applicationName), std::string(settings::viewerSection),
                                           settingName, wanted ? chosen : notChosen);
}

}  // namespace

bool storedManifestChoice(settings::SettingsBackend& backend) {
  return settings::Registry(backend).GetSetting(std::string(settings::applicationName),
                                                std::string(settings::viewerSection), settingName, notChosen) == chosen;
}

void addManifestEntry(CommandPopup& menu, AuditViewer& viewer, const MessageBoxes& messages) {
  QAction* const entry = menu.addOwnEntry(ownText("export.manifest"));
  entry->setCheckable(true);
  entry->setChecked(libraryState().writesManifests);
  QObject::connect(entry, &QAction::triggered, &viewer,
                   [&messages](bool wanted) { messages.trapped("ChooseManifest", [wanted] { choose(wanted); }); });
}

}  // namespace korvel::control
