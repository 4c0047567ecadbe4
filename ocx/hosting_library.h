#pragma once

#include "ocx/hosted_viewer.h"

/// The library with the toolkit, loaded from the folder of the control's file when a control is made first.
namespace korvel::ocx {

/// Throws Failure, in words, where a file is missing or of another version, and on another thread than the first.
[[nodiscard]] Hosting& hosting();

/// Throws Failure, in words, where the library or one that it needs is missing. Opens nothing.
void tryHostingLibrary();

/// Ends the toolkit and unloads its library, if it is loaded. Returns whether it is gone.
[[nodiscard]] bool closeHosting() noexcept;

}  // namespace korvel::ocx
