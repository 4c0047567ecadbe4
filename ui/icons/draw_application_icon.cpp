// Draws the application icon into a folder, one PNG for each side length: korvel_draw_application_icon FOLDER
// scripts/application-icon makes the icon file of them.
#include <QDir>
#include <QGuiApplication>
#include <QPixmap>
#include <cstdio>

#include "ui/icons/application_icon.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const QDir folder(QGuiApplication::arguments().value(1));
  const QIcon sign = korvel::ui::applicationIcon();
  for (const int side : korvel::ui::applicationIconSides) {
    const QString file = folder.filePath(QStringLiteral("%1.png").arg(side));
    if (sign.pixmap(QSize(side, side), 1.0).save(file)) continue;
    static_cast<void>(std::fprintf(stderr, "Not written: %s\n", qPrintable(file)));
    return 1;
  }
  return 0;
}
