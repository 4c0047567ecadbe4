#pragma once

#include <QList>
#include <QRect>
#include <QSize>
#include <QString>
#include <optional>

namespace korvel::host {

class FormFile;

/// Where a window stands, as it is remembered from one start to the next. Lengths in device-independent pixels.
struct WindowPlacement {
  /// What is inside of the frame while the window is not maximised.
  QRect normal;
  bool maximized = false;

  friend bool operator==(const WindowPlacement&, const WindowPlacement&) = default;
};

/// "normal 120 80 1280 800", "maximized ...": left, top, width and height.
[[nodiscard]] QString placementText(const WindowPlacement& placement);
/// Nothing for a text that is none of these.
[[nodiscard]] std::optional<WindowPlacement> placementFrom(const QString& text);

/// `wanted` on the screens that are there now, of which `screens` are the parts that a window may use, the first
/// screen first: a window that lies wholly on them stays, any other gets as large as its nearest screen at most and
/// moves into it. `titleBar` is the height that the frame needs above of it.
[[nodiscard]] QRect placedOn(const QList<QRect>& screens, const QRect& wanted, int titleBar);

/// The placement that stood in the form when it was loaded; nothing where there was none or it is damaged.
[[nodiscard]] std::optional<WindowPlacement> storedPlacement(const FormFile& form);
/// Keeps the placement in the form's file, which every user may write, unlike the settings store of some platforms.
/// Where the file cannot be written, the next window has the default place; no message delays the end of the program.
void storePlacement(FormFile& form, const WindowPlacement& placement);

}  // namespace korvel::host
