#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char** argv) {
  // The tests need no display, and look the same with one.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
