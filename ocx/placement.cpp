#include "ocx/placement.h"

// after windows.h
#include <olectl.h>

#include <array>
#include <utility>

#include "ocx/allocated_text.h"
#include "ocx/ambient.h"
#include "ocx/control_status.h"
#include "ocx/failure.h"
#include "ocx/picture.h"

namespace korvel::ocx {
namespace {

SIZE sizeOf(const RECT& place) {
  return {place.right - place.left, place.bottom - place.top};
}

bool isWithin(HWND window, HWND ancestor) {
  return ancestor != nullptr && (window == ancestor || ::IsChild(ancestor, window) != 0);
}

/// The keys held down, as containers want them: 1 Shift, 2 Ctrl, 4 Alt.
DWORD modifiers() {
  const auto held = [](int key, DWORD bit) { return ::GetKeyState(key) < 0 ? bit : DWORD{0}; };
  return held(VK_SHIFT, 1) | held(VK_CONTROL, 2) | held(VK_MENU, 4);
}

/// Keys with which dialogs move among their elements or close: the viewer has its own use for them.
bool isKeyOfDialogs(WPARAM key) {
  switch (key) {
    case VK_TAB:
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
    case VK_RETURN:
    case VK_ESCAPE:
      return true;
    default:
      return false;
  }
}

}  // namespace

HRESULT Placement::SetClientSite(IOleClientSite* site) noexcept {
  return guarded([&] {
    if (site == nullptr) leave();
    site_ = ComPointer<IOleClientSite>::shared(site);
    if (site_) readAmbients(DISPID_UNKNOWN);
    return S_OK;
  });
}

HRESULT Placement::GetClientSite(IOleClientSite** site) noexcept {
  if (site == nullptr) return E_POINTER;
  *site = ComPointer<IOleClientSite>(site_).handOver();
  return S_OK;
}

HRESULT Placement::SetHostNames(LPCOLESTR /*program*/, LPCOLESTR /*document*/) noexcept {
  return S_OK;
}

HRESULT Placement::Close(DWORD save) noexcept {
  return guarded([&] {
    viewer().stopWaiting();
    const ComPointer<IOleClientSite> site = site_;
    if (save != OLECLOSE_NOSAVE && site) site->SaveObject();
    leave();
    if (sinks_) sinks_->SendOnClose();
    return S_OK;
  });
}

HRESULT Placement::SetMoniker(DWORD, IMoniker*) noexcept {
  return E_NOTIMPL;
}
HRESULT Placement::GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept {
  if (moniker != nullptr) *moniker = nullptr;
  return E_NOTIMPL;
}
HRESULT Placement::InitFromData(IDataObject*, BOOL, DWORD) noexcept {
  return E_NOTIMPL;
}
HRESULT Placement::GetClipboardData(DWORD, IDataObject** data) noexcept {
  if (data != nullptr) *data = nullptr;
  return E_NOTIMPL;
}

HRESULT Placement::DoVerb(LONG verb, LPMSG /*message*/, IOleClientSite* site, LONG index, HWND parent,
                          LPCRECT /*place*/) noexcept {
  if (index != 0 && index != -1) return DV_E_LINDEX;
  return guarded([&]() -> HRESULT {
    if (!site_ && site != nullptr) site_ = ComPointer<IOleClientSite>::shared(site);
    switch (verb) {
      case OLEIVERB_PRIMARY:
      case OLEIVERB_SHOW:
      case OLEIVERB_OPEN:
      case OLEIVERB_UIACTIVATE:
        return activate(verb != OLEIVERB_SHOW);
      case OLEIVERB_INPLACEACTIVATE:
        return activate(false);
      case OLEIVERB_PROPERTIES:
      case propertiesVerbNumber:
        return showProperties(parent);
      case OLEIVERB_HIDE:
        leave();
        return S_OK;
      default:
        return verb > 0 ? OLEOBJ_S_INVALIDVERB : E_NOTIMPL;
    }
  });
}

HRESULT Placement::EnumVerbs(IEnumOLEVERB** verbs) noexcept {
  if (verbs == nullptr) return E_POINTER;
  *verbs = nullptr;
  return OLE_S_USEREG;
}
HRESULT Placement::Update() noexcept {
  return S_OK;
}
HRESULT Placement::IsUpToDate() noexcept {
  return S_OK;
}

HRESULT Placement::GetUserClassID(CLSID* identifier) noexcept {
  if (identifier == nullptr) return E_POINTER;
  *identifier = types().controlId;
  return S_OK;
}

HRESULT Placement::GetUserType(DWORD /*form*/, LPOLESTR* name) noexcept {
  if (name == nullptr) return E_POINTER;
  *name = allocated(controlName);
  return *name != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT Placement::SetExtent(DWORD aspect, SIZEL* size) noexcept {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (size->cx < 0 || size->cy < 0) return E_INVALIDARG;
  extent_ = *size;
  viewChanged();
  return S_OK;
}

HRESULT Placement::GetExtent(DWORD aspect, SIZEL* size) noexcept {
  if (size == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *size = extent_;
  return S_OK;
}

HRESULT Placement::Advise(IAdviseSink* sink, DWORD* connection) noexcept {
  if (sink == nullptr || connection == nullptr) return E_POINTER;
  if (!sinks_)
    if (const HRESULT result = ::CreateOleAdviseHolder(sinks_.receive()); FAILED(result)) return result;
  return sinks_->Advise(sink, connection);
}
HRESULT Placement::Unadvise(DWORD connection) noexcept {
  return sinks_ ? sinks_->Unadvise(connection) : OLE_E_NOCONNECTION;
}
HRESULT Placement::EnumAdvise(IEnumSTATDATA** sinks) noexcept {
  if (sinks == nullptr) return E_POINTER;
  *sinks = nullptr;
  return sinks_ ? sinks_->EnumAdvise(sinks) : S_OK;
}

HRESULT Placement::GetMiscStatus(DWORD aspect, DWORD* status) noexcept {
  if (status == nullptr) return E_POINTER;
  *status = aspect == DVASPECT_CONTENT ? miscStatus : 0;
  return S_OK;
}
HRESULT Placement::SetColorScheme(LOGPALETTE*) noexcept {
  return E_NOTIMPL;
}

HRESULT Placement::GetWindow(HWND* window) noexcept {
  if (window == nullptr) return E_POINTER;
  *window = window_.handle();
  return *window != nullptr ? S_OK : E_FAIL;
}
HRESULT Placement::ContextSensitiveHelp(BOOL) noexcept {
  return E_NOTIMPL;
}

HRESULT Placement::InPlaceDeactivate() noexcept {
  return guarded([&] {
    leave();
    return S_OK;
  });
}

HRESULT Placement::UIDeactivate() noexcept {
  return guarded([&] {
    if (state_ != State::active) return S_OK;
    state_ = State::placed;
    if (frame_) frame_->SetActiveObject(nullptr, nullptr);
    if (document_) document_->SetActiveObject(nullptr, nullptr);
    if (const ComPointer<IOleInPlaceSite> site = placeSite_) site->OnUIDeactivate(FALSE);
    return S_OK;
  });
}

HRESULT Placement::SetObjectRects(LPCRECT place, LPCRECT clip) noexcept {
  if (place == nullptr) return E_POINTER;
  if (window_.handle() == nullptr) return E_UNEXPECTED;
  window_.move(*place, clip != nullptr ? *clip : *place);
  if (running_)
    viewer().resize(sizeOf(*place));
  else
    ::InvalidateRect(window_.handle(), nullptr, TRUE);
  return S_OK;
}

HRESULT Placement::ReactivateAndUndo() noexcept {
  return INPLACE_E_NOTUNDOABLE;
}

HRESULT Placement::TranslateAccelerator(LPMSG message) noexcept {
  if (message == nullptr) return E_POINTER;
  if (dead_ || !isWithin(message->hwnd, window_.handle())) return S_FALSE;
  // A form would look for a typed letter among its mnemonics.
  if (message->message == WM_CHAR) {
    ::DispatchMessageW(message);
    return S_OK;
  }
  if (message->message != WM_KEYDOWN && message->message != WM_SYSKEYDOWN) return S_FALSE;
  return guarded([&] {
    const bool leaves = message->wParam == VK_TAB && viewer().isAtEnd(::GetKeyState(VK_SHIFT) < 0);
    if (!leaves && message->message == WM_KEYDOWN && isKeyOfDialogs(message->wParam)) {
      ::TranslateMessage(message);
      ::DispatchMessageW(message);
      return S_OK;
    }
    const auto site = ComPointer<IOleControlSite>::of(site_.get(), IID_IOleControlSite);
    return site && site->TranslateAccelerator(message, modifiers()) == S_OK ? S_OK : S_FALSE;
  });
}

HRESULT Placement::OnFrameWindowActivate(BOOL) noexcept {
  return S_OK;
}
HRESULT Placement::OnDocWindowActivate(BOOL) noexcept {
  return S_OK;
}
HRESULT Placement::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) noexcept {
  return S_OK;
}
HRESULT Placement::EnableModeless(BOOL) noexcept {
  return S_OK;
}

// The control has no keys of its own for as long as another has the focus.
HRESULT Placement::GetControlInfo(CONTROLINFO* information) noexcept {
  if (information == nullptr) return E_POINTER;
  information->hAccel = nullptr;
  information->cAccel = 0;
  information->dwFlags = 0;
  return S_OK;
}
HRESULT Placement::OnMnemonic(LPMSG) noexcept {
  return S_OK;
}

HRESULT Placement::OnAmbientPropertyChange(DISPID property) noexcept {
  return guarded([&] {
    if (!site_) return S_OK;
    const bool before = running_;
    readAmbients(property);
    if (running_ != before && state_ != State::inactive) {
      leave();
      activate(false);
    }
    return S_OK;
  });
}

HRESULT Placement::FreezeEvents(BOOL frozen) noexcept {
  if (frozen != FALSE)
    ++frozen_;
  else if (frozen_ > 0)
    --frozen_;
  return S_OK;
}

void Placement::readAmbients(DISPID property) {
  struct Ambient {
    DISPID property;
    void (Placement::*read)();
  };
  // The viewer's language is what its settings say, and its text has its own colours: no container changes them.
  constexpr std::array<Ambient, 4> all{{{DISPID_AMBIENT_USERMODE, &Placement::readUserMode},
                                        {DISPID_AMBIENT_UIDEAD, &Placement::readDead},
                                        {DISPID_AMBIENT_BACKCOLOR, &Placement::readBackground},
                                        {DISPID_AMBIENT_FONT, &Placement::readFont}}};
  for (const Ambient& each : all)
    if (property == DISPID_UNKNOWN || property == each.property) (this->*each.read)();
}

void Placement::readUserMode() {
  running_ = isRunning(site_.get());
}

void Placement::readDead() {
  dead_ = isDead(site_.get());
  if (state_ == State::inactive) return;
  ::EnableWindow(window_.handle(), dead_ ? FALSE : TRUE);
  // A window that is disabled around it keeps the focus, and its keys.
  if (dead_ && isWithin(::GetFocus(), window_.handle())) ::SetFocus(::GetParent(window_.handle()));
}

void Placement::readBackground() {
  background_ = ambientBackground(site_.get());
  if (state_ != State::inactive) ::InvalidateRect(window_.handle(), nullptr, FALSE);
}

void Placement::readFont() {
  if (const auto font = ambientFont(site_.get()))
    viewer().setFont(font->family.c_str(), font->points, font->bold, font->italic);
}

HRESULT Placement::showProperties(HWND owner) {
  const auto site = ComPointer<IOleControlSite>::of(site_.get(), IID_IOleControlSite);
  if (site && SUCCEEDED(site->ShowPropertyFrame())) return S_OK;
  const auto window = ComPointer<IOleWindow>::of(site_.get(), IID_IOleInPlaceSite);
  if (owner == nullptr && window) window->GetWindow(&owner);
  // The container may let the control and its place go while the window is open.
  const ComPointer<IOleInPlaceFrame> frame = frame_;
  if (frame) frame->EnableModeless(FALSE);
  const HRESULT result = openPropertyFrame(owner);
  if (frame) frame->EnableModeless(TRUE);
  return result;
}

HRESULT Placement::activate(bool withFocus) {
  if (state_ == State::inactive) {
    const auto site = ComPointer<IOleInPlaceSite>::of(site_.get(), IID_IOleInPlaceSite);
    if (!site) return fail(OLE_E_NOT_INPLACEACTIVE, L"The container has no place for the control.");
    if (site->CanInPlaceActivate() != S_OK) return E_FAIL;
    place(*site.get());
    site_->ShowObject();
  }
  // A form that is designed has its own use for keys.
  if (withFocus && running_ && !dead_) {
    takeUserInterface();
    viewer().takeFocus(false);
  }
  return S_OK;
}

void Placement::place(IOleInPlaceSite& site) {
  check(site.OnInPlaceActivate());
  placeSite_ = ComPointer<IOleInPlaceSite>::shared(&site);
  state_ = State::placed;
  try {
    HWND parent = nullptr;
    check(site.GetWindow(&parent));
    RECT where{};
    RECT clip{};
    OLEINPLACEFRAMEINFO frame{};
    frame.cb = sizeof(frame);
    check(site.GetWindowContext(frame_.receive(), document_.receive(), &where, &clip, &frame));
    window_.open(parent, where);
    window_.move(where, clip);
    if (running_) check(viewer().place(window_.handle(), sizeOf(where)));
    ::EnableWindow(window_.handle(), dead_ ? FALSE : TRUE);
    ::ShowWindow(window_.handle(), SW_SHOWNA);
  } catch (...) {
    leave();
    throw;
  }
}

void Placement::takeUserInterface() {
  if (state_ != State::placed) return;
  const ComPointer<IOleInPlaceSite> site = placeSite_;
  if (FAILED(site->OnUIActivate())) return;
  state_ = State::active;
  if (frame_) {
    frame_->SetActiveObject(this, controlName);
    // No tool bars around the control.
    frame_->SetBorderSpace(nullptr);
  }
  if (document_) {
    document_->SetActiveObject(this, controlName);
    document_->SetBorderSpace(nullptr);
  }
}

void Placement::leave() {
  if (state_ == State::inactive) return;
  UIDeactivate();
  state_ = State::inactive;
  dialogOpened(false);
  viewer().remove();
  window_.close();
  frame_ = {};
  document_ = {};
  const ComPointer<IOleInPlaceSite> site = std::exchange(placeSite_, {});
  site->OnInPlaceDeactivate();
}

void Placement::focusCame() {
  if (state_ != State::placed || !running_ || dead_) return;
  takeUserInterface();
  if (const auto site = ComPointer<IOleControlSite>::of(site_.get(), IID_IOleControlSite)) site->OnFocus(TRUE);
}

void Placement::dialogOpened(bool open) {
  if (open == (disabled_ != nullptr)) return;
  // A member called before the control has a place disables nothing.
  if (open && window_.handle() == nullptr) return;
  if (open) {
    disabled_ = ::GetAncestor(window_.handle(), GA_ROOT);
    if (frame_) frame_->EnableModeless(FALSE);
    ::EnableWindow(disabled_, FALSE);
  } else {
    ::EnableWindow(std::exchange(disabled_, nullptr), TRUE);
    if (frame_) frame_->EnableModeless(TRUE);
  }
}

void Placement::windowClicked() noexcept {
  if (running_ && !dead_) takeUserInterface();
}

void Placement::windowFocused() noexcept {
  if (!running_ || dead_ || state_ == State::inactive) return;
  takeUserInterface();
  viewer().takeFocus(::GetKeyState(VK_TAB) < 0 && ::GetKeyState(VK_SHIFT) < 0);
}

bool Placement::paintWindow(HDC context, SIZE size) noexcept {
  if (running_) return false;
  const RECT all{0, 0, size.cx, size.cy};
  return SUCCEEDED(guarded([&] { return paintPicture(viewer(), context, all, size); }));
}

COLORREF Placement::background() const noexcept {
  return background_.value_or(::GetSysColor(COLOR_BTNFACE));
}

void Placement::windowLost() noexcept {
  [[maybe_unused]] const HRESULT result = guarded([&] {
    leave();
    return S_OK;
  });
}

}  // namespace korvel::ocx
