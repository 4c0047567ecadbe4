#include "cli/drawing_platform.h"
#include "settings/registry.h"

namespace korvel::cli {

std::string drawingPlatform() {
  // Only the system's own platform knows the system's fonts; another one is for those who bring fonts of their own.
  const std::string chosen = settings::GetEnvironment("QT_QPA_PLATFORM");
  return chosen.empty() ? "windows" : chosen;
}

}  // namespace korvel::cli
