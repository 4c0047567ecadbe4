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
  // The identifiers of the toolkit's other platforms, as in tests, are no system windows.
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
  // A dialog without an owner closed while all our windows were disabled, so the system may have activated another
  // program's window. Right after that, ours may still be activated.
  if (active_ != nullptr) SetForegroundWindow(active_);
}

}  // namespace korvel::control
