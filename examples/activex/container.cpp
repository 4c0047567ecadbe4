#include "container.h"

// after windows.h
#include <oleauto.h>
#include <olectl.h>

namespace example {

Container::Container(HWND window, IUnknown* control, bool running) : window_(window), running_(running) {
  if (SUCCEEDED(control->QueryInterface(IID_IOleObject, reinterpret_cast<void**>(&control_))))
    control_->SetClientSite(this);
}

Container::~Container() {
  close();
  for (auto& each : ambients_) ::VariantClear(&each.second);
}

HRESULT Container::connect() {
  const Borrowed<IConnectionPointContainer> points(control_, IID_IConnectionPointContainer);
  const Borrowed<IProvideClassInfo2> information(control_, IID_IProvideClassInfo2);
  GUID events{};
  if (!points || !information) return E_NOINTERFACE;
  if (const HRESULT result = information->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events); FAILED(result))
    return result;
  if (const HRESULT result = connectTo(*points, events, static_cast<IDispatch*>(this)); FAILED(result)) return result;
  return connectTo(*points, IID_IPropertyNotifySink, static_cast<IPropertyNotifySink*>(this));
}

HRESULT Container::connectTo(IConnectionPointContainer& points, REFIID identifier, IUnknown* sink) {
  Connected connected{};
  if (const HRESULT result = points.FindConnectionPoint(identifier, &connected.point); FAILED(result)) return result;
  const HRESULT result = connected.point->Advise(sink, &connected.cookie);
  if (SUCCEEDED(result))
    connected_.push_back(connected);
  else
    connected.point->Release();
  return result;
}

HRESULT Container::doVerb(LONG verb) {
  RECT place{};
  ::GetClientRect(window_, &place);
  return control_->DoVerb(verb, nullptr, this, 0, window_, &place);
}

HRESULT Container::move(const RECT& place) {
  const Borrowed<IOleInPlaceObject> object(control_, IID_IOleInPlaceObject);
  return object->SetObjectRects(&place, &place);
}

HRESULT Container::setRunning(bool running) {
  running_ = running;
  const Borrowed<IOleControl> object(control_, IID_IOleControl);
  return object->OnAmbientPropertyChange(DISPID_AMBIENT_USERMODE);
}

HRESULT Container::setAmbient(DISPID property, VARIANT value, DISPID announced) {
  ::VariantClear(&ambients_[property]);
  ambients_[property] = value;
  const Borrowed<IOleControl> object(control_, IID_IOleControl);
  return object->OnAmbientPropertyChange(announced);
}

HRESULT Container::invoke(std::wstring member, WORD kind, std::vector<VARIANT> arguments) {
  const Borrowed<IDispatch> members(control_, IID_IDispatch);
  LPOLESTR name = member.data();
  DISPID number = DISPID_UNKNOWN;
  HRESULT result = members ? members->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &number) : E_NOINTERFACE;
  if (SUCCEEDED(result)) {
    const bool puts = kind == DISPATCH_PROPERTYPUT;
    DISPID value = DISPID_PROPERTYPUT;
    DISPPARAMS given{arguments.data(), puts ? &value : nullptr, static_cast<UINT>(arguments.size()), puts ? 1U : 0U};
    EXCEPINFO failure{};
    result = members->Invoke(number, IID_NULL, LOCALE_USER_DEFAULT, kind, &given, nullptr, &failure, nullptr);
    if (failure.bstrDescription != nullptr) tell(member + L": " + failure.bstrDescription);
    ::SysFreeString(failure.bstrSource);
    ::SysFreeString(failure.bstrDescription);
    ::SysFreeString(failure.bstrHelpFile);
  }
  for (VARIANT& each : arguments) ::VariantClear(&each);
  return result;
}

HRESULT Container::put(const std::wstring& property, const std::wstring& value) {
  VARIANT text{};
  text.vt = VT_BSTR;
  text.bstrVal = ::SysAllocString(value.c_str());
  return invoke(property, DISPATCH_PROPERTYPUT, {text});
}

bool Container::translate(MSG& message) {
  return active_ != nullptr && active_->TranslateAccelerator(&message) == S_OK;
}

void Container::close() {
  if (control_ == nullptr) return;
  for (const Connected& each : connected_) {
    each.point->Unadvise(each.cookie);
    each.point->Release();
  }
  connected_.clear();
  control_->Close(OLECLOSE_NOSAVE);
  control_->SetClientSite(nullptr);
  IOleObject* closed = control_;
  control_ = nullptr;
  closed->Release();
}

HRESULT Container::tell(const std::wstring& line) {
  if (listener_) listener_(line);
  return S_OK;
}

HRESULT Container::QueryInterface(REFIID identifier, void** object) {
  struct Known {
    const IID& identifier;
    void* object;
  };
  const Known all[] = {{IID_IUnknown, static_cast<IOleClientSite*>(this)},
                       {IID_IOleClientSite, static_cast<IOleClientSite*>(this)},
                       {IID_IOleControlSite, static_cast<IOleControlSite*>(this)},
                       {IID_IOleWindow, static_cast<IOleInPlaceSite*>(this)},
                       {IID_IOleInPlaceSite, static_cast<IOleInPlaceSite*>(this)},
                       {IID_IOleInPlaceUIWindow, static_cast<IOleInPlaceFrame*>(this)},
                       {IID_IOleInPlaceFrame, static_cast<IOleInPlaceFrame*>(this)},
                       {IID_IDispatch, static_cast<IDispatch*>(this)},
                       {IID_IPropertyNotifySink, static_cast<IPropertyNotifySink*>(this)},
                       {IID_IAdviseSink, static_cast<IAdviseSink*>(this)}};
  *object = nullptr;
  for (const Known& each : all)
    if (IsEqualIID(identifier, each.identifier)) *object = each.object;
  if (*object == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT Container::GetContainer(IOleContainer** container) {
  *container = nullptr;
  return E_NOINTERFACE;
}

HRESULT Container::TranslateAccelerator(MSG* message, DWORD modifiers) {
  tell(L"TranslateAccelerator " + std::to_wstring(message->wParam) + L' ' + std::to_wstring(modifiers));
  return keys_ && keys_(*message) ? S_OK : S_FALSE;
}

HRESULT Container::ShowPropertyFrame() {
  tell(L"ShowPropertyFrame");
  return hasPropertyWindow_ ? S_OK : E_NOTIMPL;
}

HRESULT Container::GetWindow(HWND* window) {
  *window = window_;
  return S_OK;
}

HRESULT Container::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, LPRECT place, LPRECT clip,
                                    LPOLEINPLACEFRAMEINFO information) {
  *frame = this;
  AddRef();
  *document = nullptr;
  ::GetClientRect(window_, place);
  *clip = *place;
  information->fMDIApp = FALSE;
  information->hwndFrame = ::GetAncestor(window_, GA_ROOT);
  information->haccel = nullptr;
  information->cAccelEntries = 0;
  return S_OK;
}

HRESULT Container::OnPosRectChange(LPCRECT place) {
  return move(*place);
}

HRESULT Container::SetActiveObject(IOleInPlaceActiveObject* active, LPCOLESTR /*name*/) {
  if (active != nullptr) active->AddRef();
  if (active_ != nullptr) active_->Release();
  active_ = active;
  return S_OK;
}

HRESULT Container::EnableModeless(BOOL enabled) {
  return tell(enabled != FALSE ? L"EnableModeless TRUE" : L"EnableModeless FALSE");
}

HRESULT Container::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                          UINT*) {
  // Ambient properties have negative numbers.
  if (member == DISPID_AMBIENT_USERMODE && (flags & DISPATCH_PROPERTYGET) != 0) {
    result->vt = VT_BOOL;
    result->boolVal = running_ ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }
  if (const auto ambient = ambients_.find(member); ambient != ambients_.end() && ambient->second.vt != VT_EMPTY)
    return ::VariantCopy(result, &ambient->second);
  if (member < 0) return DISP_E_MEMBERNOTFOUND;
  std::wstring line = L"event " + std::to_wstring(member);
  for (UINT index = arguments->cArgs; index > 0; --index)
    if (arguments->rgvarg[index - 1].vt == VT_BSTR) line += std::wstring(L" ") + arguments->rgvarg[index - 1].bstrVal;
  return tell(line);
}

HRESULT Container::OnChanged(DISPID property) {
  return tell(L"OnChanged " + std::to_wstring(property));
}

}  // namespace example
