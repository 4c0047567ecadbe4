// Opens help files and text files by the programs of the desktop.
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include "base/system_errors.h"
#include "control/file_programs.h"

namespace korvel::control {

// A desktop's program takes no start page: contents and index are one click away in all of them.
HelpOutcome openHelpFile(const QWidget* /*owner*/, const QString& file, HelpCommand /*command*/) {
  if (file.isEmpty()) return HelpOutcome::done;
  const QFileInfo found(file);
  if (!found.isFile()) return HelpOutcome::noFile;
  // As an absolute URL, so that no name is taken for an option or another kind of URL.
  return QDesktopServices::openUrl(QUrl::fromLocalFile(found.absoluteFilePath())) ? HelpOutcome::done
                                                                                  : HelpOutcome::noViewer;
}

void startTextEditor(const QString& file) {
  // A program with arguments, split like a command line, but without a shell.
  QStringList command = QProcess::splitCommand(qEnvironmentVariable("KORVEL_EDITOR"));
  const bool started = command.isEmpty() ? QDesktopServices::openUrl(QUrl::fromLocalFile(file))
                                         : QProcess::startDetached(command.takeFirst(), command << file);
  if (!started) throw fileError(FileError::fileNotFound);
}

}  // namespace korvel::control
