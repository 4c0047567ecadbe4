#pragma once

#include <QString>

namespace korvel::control {

/// What "notepad" is started with: its name and the path, in quotes where the path has a blank.
[[nodiscard]] QString notepadCommand(const QString& file);

/// Starts the program at `program` with a command line, in a window of its own that is shown as usual. Throws Error 53
/// where it cannot be started.
void startWindowsProgram(const QString& program, const QString& commandLine);

}  // namespace korvel::control
