#pragma once

#include <QString>

#include "settings/string_table.h"

namespace korvel::control {

/// Sets `helpFile` to the help file of the language in the folder of the viewer, whose executable `viewerPath` names.
/// The path is deliberately cut by the length of the viewer's file name only, whatever its last characters are. Throws
/// Error 5 for a path that is shorter than that name. A failure or an offset that is none of the five leaves `helpFile`
/// as it was.
void chooseHelpFile(QString& helpFile, const QString& viewerPath, const settings::LanguageOffset& language);

}  // namespace korvel::control
