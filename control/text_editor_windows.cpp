// The system's own editor.
#include <QDir>
#include <QProcess>

#include "control/text_editor.h"
#include "output/windows_error.h"

namespace korvel::control {

void startTextEditor(const QString& file) {
  if (!QProcess::startDetached(QStringLiteral("notepad"), {QDir::toNativeSeparators(file)}))
    throw output::windowsError(output::errorFileNotFound);
}

}  // namespace korvel::control
