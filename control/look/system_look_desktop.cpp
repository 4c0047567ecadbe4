// Where the toolkit's palette says all that the desktop has to say.
#include "control/look/palettes.h"
#include "control/look/system_look.h"

namespace korvel::look {

SystemLook readSystemLook() {
  return {.native = requestedScheme() == Scheme::Native};
}

}  // namespace korvel::look
