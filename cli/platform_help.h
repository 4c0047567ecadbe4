#pragma once

namespace korvel::cli {

// What the help says of the platform.

/// The environment's variables, a line or more for each.
extern const char* const environmentHelp;
/// A folder, for examples.
extern const char* const exampleFolder;

}  // namespace korvel::cli
