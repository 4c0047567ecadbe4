// Draws the application icon into a folder, one PNG for each side length, and as a drawing, application.svg:
// korvel_draw_application_icon FOLDER [SIDE...]
// Without side lengths in those of the icon file for Windows, which scripts/application-icon makes of them; packaging/
// names those of desktops.
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPixmap>
#include <cstdio>

#include "ui/icons/application_icon.h"

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const QStringList arguments = QGuiApplication::arguments();
  const QDir folder(arguments.value(1));
  QList<int> sides;
  for (const QString& side : arguments.mid(2)) sides.append(side.toInt());
  if (sides.isEmpty())
    sides = QList<int>(korvel::ui::applicationIconSides.begin(), korvel::ui::applicationIconSides.end());
  for (const int side : sides) {
    const QString file = folder.filePath(QStringLiteral("%1.png").arg(side));
    if (side > 0 && korvel::ui::applicationIconPixmap(side).save(file)) continue;
    static_cast<void>(std::fprintf(stderr, "Not written: %s\n", qPrintable(file)));
    return 1;
  }
  QFile drawing(folder.filePath(QStringLiteral("application.svg")));
  const QByteArray svg = korvel::ui::applicationIconSvg();
  if (!svg.isEmpty() && drawing.open(QIODevice::WriteOnly) && drawing.write(svg) == svg.size() && drawing.flush())
    return 0;
  static_cast<void>(std::fprintf(stderr, "Not written: %s\n", qPrintable(drawing.fileName())));
  return 1;
}
