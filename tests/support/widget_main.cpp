#include <gmock/gmock.h>

#include <QApplication>
#include <QLocale>

int main(int argc, char** argv) {
  // The tests need no display, and look the same with one and with any locale.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  QLocale::setDefault(QLocale::c());
  return RUN_ALL_TESTS();
}
