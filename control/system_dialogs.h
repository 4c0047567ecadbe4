#pragma once

#include <QFont>
#include <QString>
#include <optional>

class QPrinter;
class QWidget;

namespace korvel::control {

/// The dialogs that the platform itself has: its own where there are such, the toolkit's elsewhere. All return when
/// they have been answered, with nothing for a cancelled dialog.

/// Fonts for the screen and for printers. What is left as it is offered stays that of `current`, also where the dialog
/// does not know that font or its size and offers another.
[[nodiscard]] std::optional<QFont> chooseSystemFont(QWidget* owner, const QFont& current);

/// A folder of the file system; `showFiles` shows the files in it as well. Begins in `beginning`, where that is there,
/// otherwise where the platform likes.
[[nodiscard]] std::optional<QString> chooseSystemFolder(QWidget* owner, const QString& title, bool showFiles,
                                                        const QString& beginning);

/// The printer and its options, or a file to print into where there is no printer; false for a cancelled dialog.
[[nodiscard]] bool chooseSystemPrinter(QWidget* owner, QPrinter& printer);

}  // namespace korvel::control
