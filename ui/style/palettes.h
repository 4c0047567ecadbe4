#pragma once

#include <QPalette>

class QApplication;

namespace korvel::ui {

/// The palettes of the stand-alone window. `accent` replaces the blue, where the platform has a colour of its own.
[[nodiscard]] QPalette lightPalette(const QColor& accent = {});
[[nodiscard]] QPalette darkPalette(const QColor& accent = {});

[[nodiscard]] bool isDark(const QPalette& palette);

/// The highlight of a palette where the user or desktop chose it; invalid where it is a default of the toolkit, or no
/// colour at all (grey, black, white).
[[nodiscard]] QColor chosenHighlight(const QPalette& palette);

enum class Scheme { System, Light, Dark, Native };

/// What the environment variable KORVEL_THEME asks for: "light", "dark" or "native" in any case; anything else leaves
/// it to the system: its own style and colours on Windows, ours in light or dark elsewhere.
[[nodiscard]] Scheme requestedScheme();

/// For a program that is nothing but the viewer: gives it the light or the dark palette, as KORVEL_THEME or else the
/// system wants it, and follows the system when that changes. A scheme of strong contrast keeps the system's own
/// colours, whatever KORVEL_THEME says. The control itself never calls this: embedded, it takes its host's palette.
void applyPreferredPalette(QApplication& application);

}  // namespace korvel::ui
