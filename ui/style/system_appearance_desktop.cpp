// Desktops where the toolkit's palette contains all that the system prescribes.
#include "ui/style/palettes.h"
#include "ui/style/system_appearance.h"

namespace korvel::ui {

SystemAppearance readSystemAppearance() {
  return {.native = requestedScheme() == Scheme::Native};
}

}  // namespace korvel::ui
