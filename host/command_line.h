#pragma once

#include <QString>
#include <QStringList>

namespace korvel::host {

/// The arguments after the program's name, before the toolkit has looked at them.
[[nodiscard]] QStringList rawArguments(int argc, char** argv);

/// Write to where the program was started from: to the files or pipes that its output and its errors were led to, else
/// to the terminal. Where there is neither, nothing happens.
void writeOutput(const QString& text);
void writeErrors(const QString& text);

}  // namespace korvel::host
