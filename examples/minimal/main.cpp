// The smallest host: a window that is the control. Its argument is the server, or the folder of the audit databases.
#include <korvel/AuditViewer.h>
#include <korvel/ViewerApplication.h>

#include <QApplication>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  korvel::applyPreferredPalette(application);

  korvel::AuditViewer viewer;
  viewer.InitProperties();
  viewer.setDefaultSQLServer(QApplication::arguments().value(1));
  viewer.setWindowIcon(korvel::viewerIcon());
  QObject::connect(&viewer, &korvel::AuditViewer::DatabaseSelected, &viewer, &QWidget::setWindowTitle);
  QObject::connect(&viewer, &korvel::AuditViewer::ExitApp, &viewer, &QWidget::close);

  viewer.resize(1280, 800);
  viewer.show();
  return QApplication::exec();
}
