// Writes the viewer's sign as an icon file for programs of Windows: korvel_write_application_icon
// ui/icons/application.ico
#include <QFile>
#include <QGuiApplication>
#include <cstdio>

#include "ui/icons/application_icon.h"
#include "ui/icons/icon_file.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QFile file(QGuiApplication::arguments().value(1));
  const QByteArray bytes = korvel::ui::iconFile(korvel::ui::applicationIcon(), korvel::ui::applicationIconSides);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) return 0;
  static_cast<void>(
      std::fprintf(stderr, "usage: korvel_write_application_icon FILE\n%s\n", qPrintable(file.errorString())));
  return 1;
}
