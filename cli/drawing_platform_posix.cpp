#include "cli/drawing_platform.h"

namespace korvel::cli {

std::string drawingPlatform() {
  return "offscreen";
}

}  // namespace korvel::cli
