#include "control/library_version.h"

namespace korvel::control {

LibraryVersion libraryVersion() noexcept {
  return {KORVEL_VERSION_MAJOR, KORVEL_VERSION_MINOR, KORVEL_VERSION_REVISION};
}

}  // namespace korvel::control
