#pragma once

#include <QtGlobal>

namespace korvel::bench {

/// The program's one application (QApplication, or QGuiApplication where there are no widgets), which needs no display.
template <typename Application>
Application& offscreenApplication() {
  static int argc = 1;
  static char name[] = "benchmark";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static Application only(argc, argv);
  return only;
}

}  // namespace korvel::bench
