// The text editor where there is no "notepad": what the user names, else what the desktop opens text files with.
#include <QDesktopServices>
#include <QProcess>
#include <QUrl>

#include "control/text_editor.h"
#include "output/windows_error.h"

namespace korvel::control {

void startTextEditor(const QString& file) {
  // A program with arguments of its own, in the manner of a command line, but without a shell's powers.
  QStringList command = QProcess::splitCommand(qEnvironmentVariable("KORVEL_EDITOR"));
  const bool started = command.isEmpty() ? QDesktopServices::openUrl(QUrl::fromLocalFile(file))
                                         : QProcess::startDetached(command.takeFirst(), command << file);
  if (!started) throw output::windowsError(output::errorFileNotFound);
}

}  // namespace korvel::control
