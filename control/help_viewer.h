#pragma once

#include "control/control_services.h"

namespace korvel::control {

enum class HelpOutcome {
  done,      ///< handed to the platform's viewer, or nothing to show
  noFile,    ///< the file is not there
  noViewer,  ///< the platform has no program for it
};

/// Hands a help file to the platform's viewer, which runs beside the control. An empty path shows nothing.
HelpOutcome openHelpFile(const QWidget* owner, const QString& file, HelpCommand command);

}  // namespace korvel::control
