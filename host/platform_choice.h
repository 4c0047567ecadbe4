#pragma once

#include <QStringList>

namespace korvel::host {

enum class PlatformChoice {
  usual,      ///< a display, or a platform that was asked for
  offscreen,  ///< no display is needed
  none        ///< no display, but a window to show
};

/// Where the window goes, from the environment and the raw arguments.
[[nodiscard]] PlatformChoice choosePlatform(const QStringList& arguments);

}  // namespace korvel::host
