#pragma once

#include "control/library_state.h"

namespace korvel::control {

/// What a control has of the platform on a form that is being drawn: settings that are empty and keep nothing, no
/// server, no dialog, no program. Every dialog is cancelled at once.
[[nodiscard]] Platform designPlatform();

}  // namespace korvel::control
