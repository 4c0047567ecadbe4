#pragma once

#include <QString>

namespace korvel::host {

/// Tells the control where the viewer is installed, which is where it looks for the help files: sets "ViewerAppPath" to
/// the viewer in `folder`. An installation that has set it already has the last word for as long as its folder exists:
/// after that the viewer has moved. Where the settings cannot be read or written there is no help; the control says
/// what is wrong with the settings.
void provideViewerPath(const QString& folder);

}  // namespace korvel::host
