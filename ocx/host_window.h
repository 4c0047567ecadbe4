#pragma once

#include <windows.h>

namespace korvel::ocx {

/// Who has a window in a container.
class HostWindowOwner {
 public:
  virtual void windowClicked() noexcept = 0;
  virtual void windowFocused() noexcept = 0;
  /// Paints a still picture of `size` pixels, and returns true; false where the viewer itself is in the window.
  virtual bool paintWindow(HDC context, SIZE size) noexcept = 0;
  /// What is behind the viewer, while it has not painted itself.
  [[nodiscard]] virtual COLORREF background() const noexcept = 0;
  /// The container has destroyed its own window, and this one with it.
  virtual void windowLost() noexcept = 0;

 protected:
  ~HostWindowOwner() = default;
};

/// The control's window in a container. The viewer's own window fills it, or a still picture while a form is designed.
/// It stays the control's when the viewer's is taken out.
class HostWindow {
 public:
  explicit HostWindow(HostWindowOwner& owner) : owner_(owner) {}
  ~HostWindow() { close(); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  /// Throws Failure.
  void open(HWND parent, const RECT& place);
  void close() noexcept;
  /// Shows the part of it that is within `clip`, in coordinates of the parent like `place`.
  void move(const RECT& place, const RECT& clip) noexcept;
  [[nodiscard]] HWND handle() const noexcept { return window_; }

  /// Takes the class of these windows back, before the file is unloaded.
  static void forgetClass() noexcept;

 private:
  static LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM first, LPARAM second) noexcept;

  HostWindowOwner& owner_;
  HWND window_ = nullptr;
};

}  // namespace korvel::ocx
