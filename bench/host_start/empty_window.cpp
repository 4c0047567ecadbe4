// The minimum work of a program of this toolkit until its window is visible.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  window.resize(1280, 800);
  window.show();
  return QApplication::exec();
}
