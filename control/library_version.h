#pragma once

namespace korvel::control {

struct LibraryVersion {
  int majorNumber = 0;
  int minorNumber = 0;
  int revision = 0;
};

/// The version of the component library that this code is part of.
[[nodiscard]] LibraryVersion libraryVersion() noexcept;

}  // namespace korvel::control
