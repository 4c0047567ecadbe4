#pragma once

#include <string>

namespace korvel::output {

/// The font of printed reports that all instances of the control share; it exists as long as the library is loaded.
struct PrintFont {
  std::string name = "Courier";
  double size = 9;  ///< points
};

/// A font size as decimal text: up to four fractional digits, none that say nothing, a point in every locale.
[[nodiscard]] std::string fontSizeText(double points);

}  // namespace korvel::output
