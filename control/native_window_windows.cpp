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

DisabledWindows::DisabledWindows(HWND owner) : active_(GetActiveWindow()) {
  EnumThreadWindows(GetCurrentThreadId(), &noteUsable, reinterpret_cast<LPARAM>(&disabled_));
  std::erase(disabled_, owner);
  for (const HWND window : disabled_) EnableWindow(window, FALSE);
}

DisabledWindows::~DisabledWindows() {
  for (const HWND window : disabled_) EnableWindow(window, TRUE);
  // A dialog without an owner left while none of our windows could take its place, so the system may have taken another
  // program's. Within the moment after it, ours may still come to the front.
  if (active_ != nullptr) SetForegroundWindow(active_);
}

}  // namespace korvel::control
