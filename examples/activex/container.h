// A container for one control, without any library but the system's: what a program must provide so that the audit
// viewer can be placed in one of its windows. main.cpp is a program that uses it.
#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace example {

/// Another interface of an object for as long as it is needed, or null.
template <typename Interface>
class Borrowed {
 public:
  Borrowed(IUnknown* object, REFIID identifier) {
    if (object != nullptr) object->QueryInterface(identifier, reinterpret_cast<void**>(&borrowed_));
  }
  ~Borrowed() {
    if (borrowed_ != nullptr) borrowed_->Release();
  }
  Borrowed(const Borrowed&) = delete;
  Borrowed& operator=(const Borrowed&) = delete;
  Interface* operator->() const { return borrowed_; }
  Interface& operator*() const { return *borrowed_; }
  explicit operator bool() const { return borrowed_ != nullptr; }

 private:
  Interface* borrowed_ = nullptr;
};

/// The control's place, which fills a window of the program. The caller owns the container, and closes it before the
/// window is destroyed. All of it is for one thread, whose apartment is single-threaded.
class Container : public IOleClientSite,
                  public IOleControlSite,
                  public IOleInPlaceSite,
                  public IOleInPlaceFrame,
                  public IDispatch,
                  public IPropertyNotifySink,
                  public IAdviseSink {
 public:
  /// Is given a line for each call of the control: "event 1 ..." for an event, "OnChanged 17" for a property.
  using Listener = std::function<void(const std::wstring& line)>;
  /// Is given a key that the control leaves to the program, and returns whether the program has used it.
  using KeyTaker = std::function<bool(const MSG& message)>;

  /// Puts `control` into `window`. While a form is designed the control is not running.
  Container(HWND window, IUnknown* control, bool running = true);
  ~Container();
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  void listen(Listener listener) { listener_ = std::move(listener); }
  void takeKeys(KeyTaker taker) { keys_ = std::move(taker); }

  /// Connects to the events and to what the control announces.
  HRESULT connect();
  /// One of OLEIVERB_...
  HRESULT doVerb(LONG verb);
  HRESULT move(const RECT& place);
  /// Between designing and running.
  HRESULT setRunning(bool running);
  /// Gives the control an ambient property, by its number, and tells it that `announced` has changed: the same number,
  /// or DISPID_UNKNOWN for any. Owns the value. A property without a value does not exist.
  HRESULT setAmbient(DISPID property, VARIANT value, DISPID announced);
  /// Whether the container has a window of its own for the control's properties.
  void setHasPropertyWindow(bool has) { hasPropertyWindow_ = has; }
  /// Calls a member of the control; `kind` is one of DISPATCH_... The arguments, the last one first, are cleared
  /// afterwards. The text of a failure is told to the listener.
  HRESULT invoke(std::wstring member, WORD kind = DISPATCH_METHOD, std::vector<VARIANT> arguments = {});
  HRESULT put(const std::wstring& property, const std::wstring& value);
  /// Whether a message of the program's loop was for the control's keys. Call it before IsDialogMessage and
  /// TranslateMessage.
  [[nodiscard]] bool translate(MSG& message);
  /// Deactivates the control and lets it go.
  void close();
  /// How often the control holds the container.
  [[nodiscard]] ULONG references() const { return references_; }

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override { return --references_; }
  // IOleClientSite
  HRESULT STDMETHODCALLTYPE SaveObject() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override;
  HRESULT STDMETHODCALLTYPE ShowObject() override { return tell(L"ShowObject"); }
  HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }
  // IOleControlSite
  HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message, DWORD modifiers) override;
  HRESULT STDMETHODCALLTYPE OnFocus(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override;
  // IOleWindow
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  // IOleInPlaceSite
  HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return tell(L"OnInPlaceActivate"); }
  HRESULT STDMETHODCALLTYPE OnUIActivate() override { return tell(L"OnUIActivate"); }
  HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT place,
                                             LPRECT clip, LPOLEINPLACEFRAMEINFO information) override;
  HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return tell(L"OnUIDeactivate"); }
  HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return tell(L"OnInPlaceDeactivate"); }
  HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT place) override;
  // IOleInPlaceFrame
  HRESULT STDMETHODCALLTYPE GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
  HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
  HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* active, LPCOLESTR name) override;
  HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enabled) override;
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }
  // IDispatch: the ambient properties, and the events
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                   EXCEPINFO*, UINT*) override;
  // IPropertyNotifySink
  HRESULT STDMETHODCALLTYPE OnChanged(DISPID property) override;
  HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return S_OK; }
  // IAdviseSink
  void STDMETHODCALLTYPE OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  void STDMETHODCALLTYPE OnViewChange(DWORD, LONG) override { tell(L"OnViewChange"); }
  void STDMETHODCALLTYPE OnRename(IMoniker*) override {}
  void STDMETHODCALLTYPE OnSave() override {}
  void STDMETHODCALLTYPE OnClose() override { tell(L"OnClose"); }

 private:
  struct Connected {
    IConnectionPoint* point;
    DWORD cookie;
  };

  HRESULT tell(const std::wstring& line);
  HRESULT connectTo(IConnectionPointContainer& points, REFIID identifier, IUnknown* sink);

  HWND window_;
  bool running_;
  bool hasPropertyWindow_ = false;
  std::map<DISPID, VARIANT> ambients_;
  ULONG references_ = 0;
  IOleObject* control_ = nullptr;
  IOleInPlaceActiveObject* active_ = nullptr;
  std::vector<Connected> connected_;
  Listener listener_;
  KeyTaker keys_;
};

}  // namespace example
