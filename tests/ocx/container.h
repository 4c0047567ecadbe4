#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <map>
#include <string>
#include <vector>

namespace korvel::test {

/// The smallest container of one control: a place in a window of the program, and a record of what the control tells.
/// The caller owns it, and closes it before the window is destroyed.
class Container final : public IOleClientSite,
                        public IOleControlSite,
                        public IOleInPlaceSite,
                        public IOleInPlaceFrame,
                        public IDispatch,
                        public IPropertyNotifySink,
                        public IAdviseSink {
 public:
  /// Puts `control` into `window`. While a form is designed the control is not running. A container that connects hears
  /// of events and changes.
  Container(HWND window, IUnknown* control, bool running = true);
  ~Container();
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

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
  /// Whether a message of the program's loop was for the control's keys. Call it before TranslateMessage.
  [[nodiscard]] bool translate(MSG& message);
  /// Deactivates the control and lets it go.
  void close();

  /// What the control has told, one line for each call.
  [[nodiscard]] const std::vector<std::wstring>& told() const { return told_; }
  void forget() { told_.clear(); }
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
  std::vector<std::wstring> told_;
};

}  // namespace korvel::test
