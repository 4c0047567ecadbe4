#pragma once

#include <QFont>
#include <QString>
#include <optional>

class QWidget;

namespace korvel::control {

/// The dialogs that the platform itself has: its own where there are such, the toolkit's elsewhere. Both return when
/// they have been answered, with nothing for a cancelled dialog.

/// Fonts for the screen and for printers.
[[nodiscard]] std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current);

/// A folder of the file system; `showFiles` shows the files in it as well.
[[nodiscard]] std::optional<QString> chooseSystemFolder(QWidget* owner, const QString& title, bool showFiles);

}  // namespace korvel::control
