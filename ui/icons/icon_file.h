#pragma once

#include <QByteArray>
#include <QIcon>
#include <span>

namespace korvel::ui {

/// The pictures of an icon, one a side length, as a Windows icon file. Those up to 64 pixels are bitmaps, which every
/// version of Windows reads, larger ones are PNG.
[[nodiscard]] QByteArray iconFile(const QIcon& icon, std::span<const int> sides);

}  // namespace korvel::ui
