#pragma once

#include "evidence/manifest_head.h"

namespace korvel::cli {

/// The head of pages that the tool writes now. What the manifest does not say yet of the program, the user and the
/// computer is asked of the system.
[[nodiscard]] output::PageHead toolPageHead(evidence::Manifest manifest, evidence::PrintedPart part);

}  // namespace korvel::cli
