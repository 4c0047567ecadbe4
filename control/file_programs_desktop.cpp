// Opens help files and text files by the programs of the desktop.
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#include "base/system_errors.h"
#include "control/file_programs.h"
#include "control/help_pages.h"

namespace korvel::control {
namespace {

/// Opens a page by the browser, or without one the book by the desktop's program for it, which takes no start page.
HelpOutcome openPageOrBook(const QUrl& page, const QString& book) {
  if (book.isEmpty()) return HelpOutcome::done;
  if (!page.isEmpty()) return openHelpPage(page) ? HelpOutcome::done : HelpOutcome::noViewer;
  const QFileInfo found(book);
  if (!found.isFile()) return HelpOutcome::noFile;
  // As an absolute URL, so that no name is taken for an option or another kind of URL.
  return QDesktopServices::openUrl(QUrl::fromLocalFile(found.absoluteFilePath())) ? HelpOutcome::done
                                                                                  : HelpOutcome::noViewer;
}

}  // namespace

HelpOutcome openHelpFile(const QWidget* /*owner*/, const QString& file, HelpCommand command) {
  return openPageOrBook(helpPage(file, command), file);
}

HelpOutcome openHelpFile(const QWidget* /*owner*/, const QString& file, const QString& topic) {
  return openPageOrBook(helpPage(file, topic), file);
}

void startTextEditor(const QString& file) {
  // A program with arguments, split like a command line, but without a shell.
  QStringList command = QProcess::splitCommand(qEnvironmentVariable("KORVEL_EDITOR"));
  const bool started = command.isEmpty() ? QDesktopServices::openUrl(QUrl::fromLocalFile(file))
                                         : QProcess::startDetached(command.takeFirst(), command << file);
  if (!started) throw fileError(FileError::fileNotFound);
}

}  // namespace korvel::control
