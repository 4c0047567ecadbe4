#pragma once

#include <QString>

namespace korvel::control {

/// Starts the system's text editor on `file`, in a window of its own, and returns at once. The name is handed over as
/// it is, never through a shell. Throws Error with the numbers of outputs where no editor can be started.
void startTextEditor(const QString& file);

}  // namespace korvel::control
