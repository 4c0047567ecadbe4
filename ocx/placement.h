#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <optional>

#include "ocx/com_pointer.h"
#include "ocx/control_types.h"
#include "ocx/host_window.h"
#include "ocx/hosted_viewer.h"

namespace korvel::ocx {

/// The control's place in a container: site, window, focus and keys.
class Placement : public IOleObject,
                  public IOleInPlaceObject,
                  public IOleInPlaceActiveObject,
                  public IOleControl,
                  protected HostWindowOwner {
 public:
  // IOleObject
  HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override;
  HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) noexcept override;
  HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR program, LPCOLESTR document) noexcept override;
  HRESULT STDMETHODCALLTYPE Close(DWORD save) noexcept override;
  HRESULT STDMETHODCALLTYPE SetMoniker(DWORD which, IMoniker* moniker) noexcept override;
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) noexcept override;
  HRESULT STDMETHODCALLTYPE InitFromData(IDataObject* data, BOOL creation, DWORD reserved) noexcept override;
  HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD reserved, IDataObject** data) noexcept override;
  HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                                   LPCRECT place) noexcept override;
  HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) noexcept override;
  HRESULT STDMETHODCALLTYPE Update() noexcept override;
  HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override;
  HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* identifier) noexcept override;
  HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* name) noexcept override;
  HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) noexcept override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) noexcept override;
  HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) noexcept override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) noexcept override;
  HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** sinks) noexcept override;
  HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) noexcept override;
  HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE* colors) noexcept override;
  // IOleWindow
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) noexcept override;
  // IOleInPlaceObject
  HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override;
  HRESULT STDMETHODCALLTYPE UIDeactivate() noexcept override;
  HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT place, LPCRECT clip) noexcept override;
  HRESULT STDMETHODCALLTYPE ReactivateAndUndo() noexcept override;
  // IOleInPlaceActiveObject
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) noexcept override;
  HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activated) noexcept override;
  HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activated) noexcept override;
  HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window, BOOL frame) noexcept override;
  HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enabled) noexcept override;
  // IOleControl
  HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* information) noexcept override;
  HRESULT STDMETHODCALLTYPE OnMnemonic(LPMSG message) noexcept override;
  HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID property) noexcept override;
  HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL frozen) noexcept override;

 protected:
  Placement() = default;
  ~Placement() = default;

  [[nodiscard]] virtual HostedViewer& viewer() noexcept = 0;
  [[nodiscard]] virtual const ControlTypes& types() const noexcept = 0;
  /// Tells the container that the control would be painted in another way.
  virtual void viewChanged() noexcept = 0;

  /// Shows a window with the control's property pages until it is closed. `owner` may be null.
  [[nodiscard]] virtual HRESULT openPropertyFrame(HWND owner) = 0;

  [[nodiscard]] SIZE size() const noexcept { return extent_; }
  [[nodiscard]] bool eventsAreFrozen() const noexcept { return frozen_ > 0; }
  void focusCame();
  /// Containers are disabled while a modal dialog of the control is open.
  void dialogOpened(bool open);
  /// Takes the control out of its window, wherever it is.
  void leave();

  void windowClicked() noexcept override;
  void windowFocused() noexcept override;
  bool paintWindow(HDC context, SIZE size) noexcept override;
  COLORREF background() const noexcept override;
  void windowLost() noexcept override;

 private:
  enum class State { inactive, placed, active };

  HRESULT activate(bool withFocus);
  /// The container's own window of properties, or the system's.
  HRESULT showProperties(HWND owner);
  void place(IOleInPlaceSite& site);
  void takeUserInterface();
  // What the container says of itself.
  void readUserMode();
  void readDead();
  void readBackground();
  void readFont();
  /// Reads one ambient property, or all of them for DISPID_UNKNOWN.
  void readAmbients(DISPID property);

  State state_ = State::inactive;
  bool running_ = true;
  /// No input is taken.
  bool dead_ = false;
  /// The system's where the container has none.
  std::optional<COLORREF> background_;
  int frozen_ = 0;
  /// What is disabled while a dialog is open.
  HWND disabled_ = nullptr;
  // 24 by 16 cm, in hundredths of a millimetre, until the container says another size.
  SIZE extent_{24000, 16000};
  HostWindow window_{*this};
  ComPointer<IOleClientSite> site_;
  ComPointer<IOleInPlaceSite> placeSite_;
  ComPointer<IOleInPlaceFrame> frame_;
  ComPointer<IOleInPlaceUIWindow> document_;
  ComPointer<IOleAdviseHolder> sinks_;
};

}  // namespace korvel::ocx
