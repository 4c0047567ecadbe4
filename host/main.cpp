#include <QApplication>

#include "host/command_line.h"
#include "host/installed_data.h"
#include "host/main_window.h"
#include "host/options.h"
#include "host/platform_choice.h"
#include "host/shot.h"

namespace {

using namespace korvel::host;

int run(int argc, char** argv) {
  const QStringList arguments = rawArguments(argc, argv);
  const korvel::ViewerLanguage language = korvel::ViewerLanguage::current();

  // Answered before anything needs a display.
  if (mentions(arguments, QStringLiteral("--help"))) {
    writeOutput(helpText(language));
    return static_cast<int>(ExitStatus::done);
  }
  if (mentions(arguments, QStringLiteral("--version"))) {
    writeOutput(productName + QStringLiteral(" " KORVEL_VERSION "\n"));
    return static_cast<int>(ExitStatus::done);
  }
  switch (choosePlatform(arguments)) {
    case PlatformChoice::usual:
      break;
    case PlatformChoice::offscreen:
      qputenv("QT_QPA_PLATFORM", "offscreen");
      break;
    case PlatformChoice::none:
      writeErrors(language.text("host.noDisplay") + QLatin1Char('\n'));
      return static_cast<int>(ExitStatus::wrongUsage);
  }

  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("KorvelAuditViewer"));
  QApplication::setApplicationDisplayName(QString());
  // The desktop finds name and icon of the window by it.
  QGuiApplication::setDesktopFileName(QStringLiteral("org.korvel.AuditViewer"));
  korvel::applyPreferredPalette(application);
  // What is left once the toolkit has taken its own options out.
  const ParsedOptions parsed = parseOptions(QApplication::arguments().mid(1), language);
  if (!parsed.failure.isEmpty()) {
    writeErrors(parsed.failure + QLatin1Char('\n') + helpText(language));
    return static_cast<int>(ExitStatus::wrongUsage);
  }

  if (parsed.options.shotFile) {
    const UnattendedMessages messages(&application);
    MainWindow window(parsed.options, language);
    return static_cast<int>(takeShot(window, *parsed.options.shotFile, messages, language));
  }
  QApplication::setWindowIcon(korvel::viewerIcon());
  korvel::rememberIn(rememberedPath());
  korvel::provideViewerPath(helpFolder(QApplication::applicationDirPath()));
  MainWindow window(parsed.options, language);
  window.present();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& failure) {
    korvel::host::writeErrors(QString::fromUtf8(failure.what()) + QLatin1Char('\n'));
    return static_cast<int>(korvel::host::ExitStatus::databaseFailed);
  }
}
