#pragma once

#include <QString>

namespace korvel::host {

/// The folder with the help of the program in `programFolder`: that of an installed tree (share/ beside bin/) where
/// books or pages are there, else the program's own.
[[nodiscard]] QString helpFolder(const QString& programFolder);

}  // namespace korvel::host
