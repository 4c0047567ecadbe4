#include "host/installed_data.h"

#include <QDir>

namespace korvel::host {

QString helpFolder(const QString& programFolder) {
  const QDir shared(QDir::cleanPath(programFolder + QStringLiteral("/../share/korvel-audit-viewer")));
  const bool hasHelp =
      !shared.entryList({QStringLiteral("KorvelAuditViewerHelp_*")}, QDir::Files | QDir::Dirs).isEmpty();
  return hasHelp ? shared.path() : programFolder;
}

}  // namespace korvel::host
