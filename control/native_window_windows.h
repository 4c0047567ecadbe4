#pragma once

#include <windows.h>

#include <vector>

class QWidget;

namespace korvel::control {

/// The system's window that a widget stands in; null for no widget, and where the toolkit draws into no system windows.
[[nodiscard]] HWND nativeWindow(const QWidget* widget);

/// While it lives, no window of this thread takes keys or clicks, but for `owner`, which the dialog stops and wakes
/// itself. For dialogs of the system, which know nothing of windows that are not their owner.
class DisabledWindows {
 public:
  explicit DisabledWindows(HWND owner = nullptr);
  ~DisabledWindows();
  DisabledWindows(const DisabledWindows&) = delete;
  DisabledWindows& operator=(const DisabledWindows&) = delete;

 private:
  HWND active_;
  std::vector<HWND> disabled_;
};

}  // namespace korvel::control
