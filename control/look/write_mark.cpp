// Writes the viewer's sign as an icon file for programs of Windows: korvel_write_mark control/resources/mark.ico
#include <QFile>
#include <QGuiApplication>
#include <cstdio>

#include "control/look/icon_file.h"
#include "control/look/mark.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QFile file(QGuiApplication::arguments().value(1));
  const QByteArray bytes = korvel::look::iconFile(korvel::look::markIcon(), korvel::look::markSides);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) return 0;
  static_cast<void>(std::fprintf(stderr, "usage: korvel_write_mark FILE\n%s\n", qPrintable(file.errorString())));
  return 1;
}
