#pragma once

#include <QString>

#include "control/control_services.h"
#include "settings/string_table.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

/// Sets `helpFile` to the help file of the language in the folder of the viewer, whose executable `viewerPath` names.
/// The path is deliberately cut by the length of the viewer's file name only, whatever its last characters are. Throws
/// Error 5 for a path that is shorter than that name. A failure or an offset that is none of the five leaves `helpFile`
/// as it was.
void chooseHelpFile(QString& helpFile, const QString& viewerPath, const settings::LanguageOffset& language);

/// F1 in windows of the control and in those around it: opens the help at the topic of what has the keyboard. The first
/// call provides it for the whole program, later ones do nothing.
void provideHelpKey();

/// The commands of the Help menu: the help file in the current language, and the about box.
class ViewerHelp {
 public:
  /// Windows belong to `viewer`.
  explicit ViewerHelp(AuditViewer& viewer) : viewer_(viewer) {}

  /// Chooses the help file by the viewer's path in the settings store.
  void chooseFile();
  void HelpContents();
  void HelpSearch();
  /// Opens the help at the topic of what has the keyboard, without one on its contents.
  void HelpOnFocus();
  void ShowAbout();

 private:
  void openHelp(HelpCommand command);

  AuditViewer& viewer_;
};

}  // namespace korvel::control
