#pragma once

#include <windows.h>
// after windows.h
#include <oleidl.h>

#include <optional>
#include <string>

namespace korvel::ocx {

/// The font that a container gives its controls.
struct AmbientFont {
  std::wstring family;
  double points = 0;
  bool bold = false;
  bool italic = false;
};

/// Whether the container is running, and not being designed; a container that does not say is running.
[[nodiscard]] bool isRunning(IOleClientSite* site);

/// Whether the container takes no input for now, as a program that is stopped in a debugger.
[[nodiscard]] bool isDead(IOleClientSite* site);

/// The colour behind controls; nothing where the container has none.
[[nodiscard]] std::optional<COLORREF> ambientBackground(IOleClientSite* site);

/// Nothing where the container has none.
[[nodiscard]] std::optional<AmbientFont> ambientFont(IOleClientSite* site);

}  // namespace korvel::ocx
