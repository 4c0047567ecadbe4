// Help where there is no HTML Help: whatever program the desktop opens such files with.
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "control/help_viewer.h"

namespace korvel::control {

// A desktop's program opens a file where it likes: contents and index are one click away in all of them.
HelpOutcome openHelpFile(const QWidget* /*owner*/, const QString& file, HelpCommand /*command*/) {
  if (file.isEmpty()) return HelpOutcome::done;
  const QFileInfo found(file);
  if (!found.isFile()) return HelpOutcome::noFile;
  // As an absolute address, so that nothing in the name is taken for an option or for an address of another kind.
  return QDesktopServices::openUrl(QUrl::fromLocalFile(found.absoluteFilePath())) ? HelpOutcome::done
                                                                                  : HelpOutcome::noViewer;
}

}  // namespace korvel::control
