#include <QApplication>
#include <iostream>

#include "control/look/mark.h"
#include "control/look/palettes.h"
#include "host/host_texts.h"
#include "host/main_window.h"
#include "host/options.h"
#include "host/platform_choice.h"
#include "host/shot.h"
#include "host/viewer_path.h"

namespace {

using namespace korvel::host;

int run(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
  const korvel::settings::LanguageOffset language = currentLanguage();

  // Answered before anything needs a display.
  if (mentions(arguments, QStringLiteral("--help"))) {
    std::cout << helpText(language).toStdString();
    return static_cast<int>(ExitStatus::done);
  }
  if (mentions(arguments, QStringLiteral("--version"))) {
    std::cout << productName.toStdString() << ' ' << KORVEL_VERSION << '\n';
    return static_cast<int>(ExitStatus::done);
  }
  switch (choosePlatform(arguments)) {
    case PlatformChoice::usual:
      break;
    case PlatformChoice::offscreen:
      qputenv("QT_QPA_PLATFORM", "offscreen");
      break;
    case PlatformChoice::none:
      std::cerr << hostText("host.noDisplay", language).toStdString() << '\n';
      return static_cast<int>(ExitStatus::wrongUsage);
  }

  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("KorvelAuditViewer"));
  QApplication::setApplicationDisplayName(QString());
  korvel::look::applyPreferredPalette(application);
  // What is left once the toolkit has taken its own options out.
  const ParsedOptions parsed = parseOptions(QApplication::arguments().mid(1), language);
  if (!parsed.failure.isEmpty()) {
    std::cerr << parsed.failure.toStdString() << '\n' << helpText(language).toStdString();
    return static_cast<int>(ExitStatus::wrongUsage);
  }

  if (parsed.options.shotFile) {
    const UnattendedMessages messages(&application);
    MainWindow window(parsed.options, language);
    return static_cast<int>(takeShot(window, *parsed.options.shotFile, messages, language));
  }
  QApplication::setWindowIcon(korvel::look::markIcon());
  provideViewerPath(QApplication::applicationDirPath());
  MainWindow window(parsed.options, language);
  window.present();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return static_cast<int>(korvel::host::ExitStatus::databaseFailed);
  }
}
