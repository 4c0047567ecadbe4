#include "korvel/ViewerApplication.h"

#include <QDir>
#include <QFileInfo>
#include <stdexcept>
#include <string>

#include "base/error.h"
#include "control/library_state.h"
#include "control/watched_work.h"
#include "db/embedded/embedded_folder.h"
#include "demo/demo_database.h"
#include "settings/registry.h"
#include "ui/icons/application_icon.h"
#include "ui/message_box.h"
#include "ui/style/palettes.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel {
namespace {

/// Whether a stored path may be in use. A path that is not absolute on this system cannot be checked and counts as
/// used.
bool isInUse(const QString& path) {
  const QFileInfo file(QDir::fromNativeSeparators(path));
  return !path.isEmpty() && (file.isRelative() || file.dir().exists());
}

}  // namespace

ViewerLanguage ViewerLanguage::current() {
  try {
    const auto backend = settings::platformBackend();
    return ViewerLanguage(QString::fromStdString(settings::storedLanguage(*backend).text()));
  } catch (const Error&) {
    return {};
  }
}

QString ViewerLanguage::text(std::string_view key, const QString& first, const QString& second) const {
  try {
    const settings::LanguageOffset offset(offset_.toStdString());
    return QString::fromStdString(
        settings::filled(settings::ownText(key, offset), first.toStdString(), second.toStdString()));
  } catch (const std::out_of_range&) {
    return {};
  }
}

void applyViewerStyle(QWidget& root) {
  ui::applyStyle(root);
}

void applyPreferredPalette(QApplication& application) {
  ui::applyPreferredPalette(application);
}

QIcon viewerIcon() {
  return ui::applicationIcon();
}

void showWarning(QWidget* owner, const QString& title, const QString& text) {
  ui::MessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, owner);
  box.exec();
}

QString provideDemoTrail() {
  const ViewerLanguage language = ViewerLanguage::current();
  try {
    const std::filesystem::path folder = db::embeddedFolder();
    const auto written = control::runWatched([folder](const std::stop_token& /*stop*/) {
      if (!demo::hasDemoDatabase(folder)) demo::writeDemoDatabases({.folder = folder});
      return true;
    });
    return written ? QString() : language.text("host.doors.stopped");
  } catch (const Error& error) {
    return ui::describe(error, settings::LanguageOffset(language.offset().toStdString()));
  }
}

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
  } catch (const Error&) {  // NOLINT(bugprone-empty-catch): no help then, as the header says
  }
}

void rememberIn(const QString& file) {
  const QString wish = qEnvironmentVariable("KORVEL_REMEMBER").trimmed().toLower();
  using Extent = control::Remembered::Extent;
  // Whoever sets the variable wants less: a word that is not understood must not mean everything.
  const Extent extent = wish.isEmpty() || wish == QLatin1String("all") ? Extent::all
                        : wish == QLatin1String("layout")              ? Extent::layout
                                                                       : Extent::nothing;
  control::libraryState().remembered = control::Remembered(file, extent);
}

QList<RecentDatabase> recentDatabases() {
  return control::libraryState().remembered.databases();
}

}  // namespace korvel
