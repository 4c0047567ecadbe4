// The least that a program of this toolkit does until a person sees a window of it.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  window.resize(1280, 800);
  window.show();
  return QApplication::exec();
}
