#pragma once

#include <QString>
#include <QUrl>

#include "control/control_services.h"

namespace korvel::control {

/// The help's pages for a browser stand beside each book, in a folder with its name: Book/ beside Book.chm.
/// The page for a command; an empty URL where it is not there.
[[nodiscard]] QUrl helpPage(const QString& book, HelpCommand command);

/// The page of a topic, "page.html" or "page.html#name". Where it is missing the contents serve; an empty URL where
/// these are missing, too.
[[nodiscard]] QUrl helpPage(const QString& book, const QString& topic);

/// Opens a page in the desktop's browser; false where there is none. What opens files for a desktop drops what stands
/// behind "#", so a page with a name is reached over a small file that leads there; it is removed when the program
/// ends.
[[nodiscard]] bool openHelpPage(const QUrl& page);

}  // namespace korvel::control
