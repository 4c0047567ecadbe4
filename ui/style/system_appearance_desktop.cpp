// Where the toolkit's palette says all that the desktop has to say.
#include "ui/style/palettes.h"
#include "ui/style/system_appearance.h"

namespace korvel::ui {

SystemAppearance readSystemAppearance() {
  return {.native = requestedScheme() == Scheme::Native};
}

}  // namespace korvel::ui
