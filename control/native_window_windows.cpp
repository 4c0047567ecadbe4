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

WindowsStopped::WindowsStopped(HWND owner) : active_(GetActiveWindow()) {
  EnumThreadWindows(GetCurrentThreadId(), &noteUsable, reinterpret_cast<LPARAM>(&stopped_));
  std::erase(stopped_, owner);
  for (const HWND window : stopped_) EnableWindow(window, FALSE);
}

WindowsStopped::~WindowsStopped() {
  for (const HWND window : stopped_) EnableWindow(window, TRUE);
  // A dialog without an owner left while none of our windows could take its place, so the system may have taken another
  // program's. Within the moment after it, ours may still come to the front.
  if (active_ != nullptr) SetForegroundWindow(active_);
}

}  // namespace korvel::control
