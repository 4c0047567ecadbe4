#pragma once

#include <QString>

#include "control/control_services.h"

namespace korvel::control {

enum class HelpOutcome {
  done,      ///< handed to the platform's viewer, or nothing to show
  noFile,    ///< the file is not there
  noViewer,  ///< the platform has no program for it
};

/// Opens a help file in the platform's viewer, or the pages beside it in the browser, which run on their own. An empty
/// path shows nothing.
HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command);
/// Opens it at a topic, "page.html" or "page.html#name".
HelpOutcome openHelpFile(const QWidget* owner, const QString& file, const QString& topic);

/// Starts the system's text editor on `file` and returns at once. The name is passed unchanged, never through a shell.
/// Throws Error with the numbers of outputs where no editor can be started.
void startTextEditor(const QString& file);

}  // namespace korvel::control
