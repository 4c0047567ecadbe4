#pragma once

#include <string>

namespace korvel::output {

/// The font of printed reports that all instances of the control share; it lives as long as the library is loaded.
struct PrintFont {
  std::string name = "Courier";
  double size = 9;  ///< points
};

}  // namespace korvel::output
