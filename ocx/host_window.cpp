#include "ocx/host_window.h"

#include "ocx/failure.h"
#include "ocx/module.h"

namespace korvel::ocx {
namespace {

constexpr const wchar_t* className = L"KorvelAuditViewerHost";

}  // namespace

void HostWindow::open(HWND parent, const RECT& place) {
  WNDCLASSEXW description{};
  description.cbSize = sizeof(description);
  description.lpfnWndProc = &HostWindow::handleMessage;
  description.hInstance = ownInstance();
  description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  description.lpszClassName = className;
  if (::RegisterClassExW(&description) == 0 && ::GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
    check(HRESULT_FROM_WIN32(::GetLastError()));
  constexpr DWORD style = WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_TABSTOP;
  // For the Tab key of forms it is one element, though it has children: it passes the focus on.
  window_ = ::CreateWindowExW(0, className, L"Korvel Audit Viewer", style, place.left, place.top,
                              place.right - place.left, place.bottom - place.top, parent, nullptr, ownInstance(), this);
  if (window_ == nullptr) check(HRESULT_FROM_WIN32(::GetLastError()));
}

void HostWindow::close() noexcept {
  if (window_ == nullptr) return;
  const HWND closed = window_;
  window_ = nullptr;
  ::SetWindowLongPtrW(closed, GWLP_USERDATA, 0);
  ::DestroyWindow(closed);
}

void HostWindow::move(const RECT& place, const RECT& clip) noexcept {
  ::SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE | SWP_NOZORDER);
  RECT shown{};
  ::IntersectRect(&shown, &place, &clip);
  if (::EqualRect(&shown, &place) != 0) {
    ::SetWindowRgn(window_, nullptr, TRUE);
  } else {
    ::OffsetRect(&shown, -place.left, -place.top);
    // The system owns the region from now on.
    ::SetWindowRgn(window_, ::CreateRectRgnIndirect(&shown), TRUE);
  }
}

void HostWindow::forgetClass() noexcept {
  ::UnregisterClassW(className, ownInstance());
}

LRESULT CALLBACK HostWindow::handleMessage(HWND window, UINT message, WPARAM first, LPARAM second) noexcept {
  if (message == WM_NCCREATE) {
    auto* self = static_cast<HostWindow*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* self = reinterpret_cast<HostWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr) return ::DefWindowProcW(window, message, first, second);
  switch (message) {
    case WM_MOUSEACTIVATE:
      self->owner_.windowClicked();
      return MA_ACTIVATE;
    case WM_SETFOCUS:
      self->owner_.windowFocused();
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      RECT all{};
      const HDC context = ::BeginPaint(window, &paint);
      ::GetClientRect(window, &all);
      if (!self->owner_.paintWindow(context, {all.right, all.bottom})) {
        ::SetDCBrushColor(context, self->owner_.background());
        ::FillRect(context, &paint.rcPaint, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
      }
      ::EndPaint(window, &paint);
      return 0;
    }
    case WM_DESTROY:
      // Its children still exist: the viewer can be taken out.
      self->window_ = nullptr;
      ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      self->owner_.windowLost();
      return 0;
    default:
      return ::DefWindowProcW(window, message, first, second);
  }
}

}  // namespace korvel::ocx
