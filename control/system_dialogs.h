#pragma once

#include <QFont>
#include <QString>
#include <optional>

class QPrinter;
class QWidget;

namespace korvel::control {

/// The platform's own dialogs where it has them, the toolkit's elsewhere. All return when they are closed, with nothing
/// for a cancelled dialog.

/// Fonts for the screen and for printers. What the user leaves unchanged stays that of `current`, also where the dialog
/// does not know that font or size and preselects another.
[[nodiscard]] std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current);

/// A folder of the file system; `showFiles` shows the files in it as well. Starts in `beginning` where that exists,
/// otherwise in the platform's default folder.
[[nodiscard]] std::optional<QString> chooseSystemFolder(QWidget* owner, const QString& title, bool showFiles,
                                                        const QString& beginning);

/// The printer and its options, or a file to print into where there is no printer; false for a cancelled dialog.
[[nodiscard]] bool chooseSystemPrinter(QWidget* owner, QPrinter& printer);

}  // namespace korvel::control
