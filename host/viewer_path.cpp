#include "host/viewer_path.h"

#include <QDir>
#include <QFileInfo>
#include <string>

#include "base/error.h"
#include "settings/registry.h"

namespace korvel::host {

namespace {

/// Whether a stored path leads somewhere, as far as this machine can tell: what is no full path here is not judged.
bool isInUse(const QString& path) {
  const QFileInfo file(QDir::fromNativeSeparators(path));
  return !path.isEmpty() && (file.isRelative() || file.dir().exists());
}

}  // namespace

void provideViewerPath(const QString& folder) {
  const std::string application(settings::applicationName);
  const std::string section(settings::viewerSection);
  const std::string key = "ViewerAppPath";
  try {
    const auto backend = settings::platformBackend();
    const settings::Registry registry(*backend);
    if (isInUse(QString::fromStdString(registry.GetSetting(application, section, key, "")))) return;
    // The name counts, not the file: the control cuts off as many characters as this name has, on every platform.
    const QString path = QDir::toNativeSeparators(QDir(folder).filePath(QStringLiteral("KorvelAuditViewer.exe")));
    registry.SaveSetting(application, section, key, path.toStdString());
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): see the header
  }
}

}  // namespace korvel::host
