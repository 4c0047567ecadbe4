#pragma once

#include <string>

namespace korvel::cli {

/// The toolkit's platform that pages are drawn with: one that has fonts and needs no display.
[[nodiscard]] std::string drawingPlatform();

}  // namespace korvel::cli
