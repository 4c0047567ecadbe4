// On Windows every session has a display, and only there the toolkit finds the system's fonts.
#include "host/platform_choice.h"

namespace korvel::host {

PlatformChoice choosePlatform(const QStringList& /*arguments*/) {
  return PlatformChoice::usual;
}

}  // namespace korvel::host
