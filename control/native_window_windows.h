#pragma once

#include <windows.h>

#include <vector>

class QWidget;

namespace korvel::control {

/// The system window of a widget; null for no widget, and where the toolkit uses no system windows.
[[nodiscard]] HWND nativeWindow(const QWidget* widget);

/// While it exists, the windows of this thread are disabled, except `owner`, which the dialog disables and enables
/// itself. For system dialogs, which do not disable windows other than their owner.
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
