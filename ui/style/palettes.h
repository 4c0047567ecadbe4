#pragma once

#include <QPalette>

class QApplication;

namespace korvel::ui {

/// The palettes of the stand-alone window. `accent` replaces the blue where the platform has an accent colour.
[[nodiscard]] QPalette lightPalette(const QColor& accent = {});
[[nodiscard]] QPalette darkPalette(const QColor& accent = {});

[[nodiscard]] bool isDark(const QPalette& palette);

/// The highlight colour of a palette where the user or the desktop has chosen it; invalid where it is a default of the
/// toolkit, grey, black or white.
[[nodiscard]] QColor chosenHighlight(const QPalette& palette);

enum class Scheme { System, Light, Dark, Native };

/// The value of the environment variable KORVEL_THEME: "light", "dark" or "native" in any case. With any other value
/// the system decides: its own style and colours on Windows, ours in light or dark elsewhere.
[[nodiscard]] Scheme requestedScheme();

/// For the stand-alone viewer: sets the light or the dark palette, as KORVEL_THEME or else the system requires, and
/// follows changes of the system. While the system uses a high-contrast theme, its colours are kept, whatever
/// KORVEL_THEME says. The control never calls this, because it takes its host's palette.
void applyPreferredPalette(QApplication& application);

}  // namespace korvel::ui
