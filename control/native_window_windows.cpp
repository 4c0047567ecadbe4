#include "control/native_window_windows.h"

#include <QGuiApplication>
#include <QWidget>

namespace korvel::control {
namespace {

BOOL CALLBACK noteUsable(HWND window, LPARAM noted) {
  if (IsWindowVisible(window) != 0 && IsWindowEnabled(window) != 0)
    reinterpret_cast<std::vector<HWND>*>(noted)->push_back(window);
  return TRUE;
}

}  // namespace

HWND nativeWindow(const QWidget* widget) {
  // Other platforms of the toolkit, those of tests above all, count their windows themselves.
  if (widget == nullptr || QGuiApplication::platformName() != QLatin1String("windows")) return nullptr;
  return reinterpret_cast<HWND>(widget->window()->winId());
}

WindowsStopped::WindowsStopped() : active_(GetActiveWindow()) {
  EnumThreadWindows(GetCurrentThreadId(), &noteUsable, reinterpret_cast<LPARAM>(&stopped_));
  for (const HWND window : stopped_) EnableWindow(window, FALSE);
}

WindowsStopped::~WindowsStopped() {
  for (const HWND window : stopped_) EnableWindow(window, TRUE);
  // The system could find no window of ours to activate when the dialog went.
  if (active_ != nullptr) SetActiveWindow(active_);
}

}  // namespace korvel::control
