// Loads a form when it runs, and sets the server of the control in it.
//   loaded_form FORM SERVER
#include <QApplication>
#include <QFile>
#include <QUiLoader>
#include <QWidget>
#include <memory>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() != 3) qFatal("usage: loaded_form FORM SERVER");
  QFile file(arguments[1]);
  QUiLoader loader;
  const std::unique_ptr<QWidget> window(loader.load(&file));
  if (window == nullptr) qFatal("%s", qPrintable(loader.errorString()));
  auto* viewer = window->findChild<QWidget*>("viewer");
  if (viewer == nullptr || !viewer->setProperty("DefaultSQLServer", arguments[2])) qFatal("no control in the form");
  window->show();
  return QApplication::exec();
}
