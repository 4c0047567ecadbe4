#include "host/installed_data.h"

#include <QDir>

namespace korvel::host {

QString helpFolder(const QString& programFolder) {
  const QDir shared(QDir::cleanPath(programFolder + QStringLiteral("/../share/korvel-audit-viewer")));
  const bool hasBooks = !shared.entryList({QStringLiteral("KorvelAuditViewerHelp_*.chm")}, QDir::Files).isEmpty();
  return hasBooks ? shared.path() : programFolder;
}

}  // namespace korvel::host
