#include "ocx/control_object.h"

// after windows.h
#include <oleauto.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ocx/failure.h"
#include "ocx/hosting_library.h"

namespace korvel::ocx {
namespace {

// The numbers of the events in the type library.
constexpr DISPID databaseSelectedEvent = 1;
constexpr DISPID exitAppEvent = 2;

/// How many arguments a member takes at most in one of these kinds; nothing for no such member.
std::optional<UINT> mostArguments(ITypeInfo& members, DISPID member, WORD kinds) {
  std::optional<UINT> most;
  FUNCDESC* function = nullptr;
  for (UINT index = 0; SUCCEEDED(members.GetFuncDesc(index, &function)); ++index) {
    UINT count = 0;
    for (SHORT argument = 0; argument < function->cParams; ++argument)
      if ((function->lprgelemdescParam[argument].paramdesc.wParamFlags & PARAMFLAG_FRETVAL) == 0) ++count;
    if (function->memid == member && (function->invkind & kinds) != 0 && count >= most.value_or(0)) most = count;
    members.ReleaseFuncDesc(function);
  }
  return most;
}

}  // namespace

ControlObject::ControlObject(IUnknown* outer, std::shared_ptr<const ControlTypes> types)
    : ConnectionPoints(types->eventsId), types_(std::move(types)), outer_(outer != nullptr ? outer : &identity_) {
  check(hosting().createViewer(*this, &viewer_), L"The control cannot be made.");
}

ControlObject::~ControlObject() {
  disconnectAll();
  if (viewer_ == nullptr) return;
  leave();
  std::exchange(viewer_, nullptr)->discard();
}

ComPointer<IUnknown> ControlObject::create(IUnknown* outer) {
  // The identity counts one reference from the beginning, which the caller gets.
  auto* control = new ControlObject(outer, controlTypes());
  ComPointer<IUnknown> identity;
  *identity.receive() = &control->identity_;
  return identity;
}

HRESULT ControlObject::Identity::QueryInterface(REFIID identifier, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = IsEqualIID(identifier, IID_IUnknown) ? this : control_.interfaceOf(identifier);
  if (*object == nullptr) return E_NOINTERFACE;
  static_cast<IUnknown*>(*object)->AddRef();
  return S_OK;
}
ULONG ControlObject::Identity::AddRef() noexcept {
  return ++references_;
}
ULONG ControlObject::Identity::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) {
    // What is told to the container while the control goes may count once more.
    references_ = 1;
    delete &control_;
  }
  return left;
}

HRESULT ControlObject::QueryInterface(REFIID identifier, void** object) noexcept {
  return outer_->QueryInterface(identifier, object);
}
ULONG ControlObject::AddRef() noexcept {
  return outer_->AddRef();
}
ULONG ControlObject::Release() noexcept {
  return outer_->Release();
}

void* ControlObject::interfaceOf(REFIID identifier) {
  if (IsEqualIID(identifier, types_->membersId)) return static_cast<AuditViewerInterface*>(this);
  const std::pair<const IID&, void*> all[] = {
      {IID_IDispatch, static_cast<IDispatch*>(this)},
      {IID_IProvideClassInfo, static_cast<IProvideClassInfo*>(this)},
      {IID_IProvideClassInfo2, static_cast<IProvideClassInfo2*>(this)},
      {IID_ISupportErrorInfo, static_cast<ISupportErrorInfo*>(this)},
      {IID_IPerPropertyBrowsing, static_cast<IPerPropertyBrowsing*>(this)},
      {IID_ISpecifyPropertyPages, static_cast<ISpecifyPropertyPages*>(this)},
      {IID_IConnectionPointContainer, static_cast<IConnectionPointContainer*>(this)},
      {IID_IPersist, static_cast<IPersist*>(static_cast<IPersistStreamInit*>(this))},
      {IID_IPersistPropertyBag, static_cast<IPersistPropertyBag*>(this)},
      {IID_IPersistStreamInit, static_cast<IPersistStreamInit*>(this)},
      {IID_IPersistStorage, static_cast<IPersistStorage*>(this)},
      {IID_IOleObject, static_cast<IOleObject*>(this)},
      {IID_IOleWindow, static_cast<IOleWindow*>(static_cast<IOleInPlaceObject*>(this))},
      {IID_IOleInPlaceObject, static_cast<IOleInPlaceObject*>(this)},
      {IID_IOleInPlaceActiveObject, static_cast<IOleInPlaceActiveObject*>(this)},
      {IID_IOleControl, static_cast<IOleControl*>(this)},
      {IID_IViewObject, static_cast<IViewObject*>(this)},
      {IID_IViewObject2, static_cast<IViewObject2*>(this)},
  };
  for (const auto& [known, object] : all)
    if (IsEqualIID(identifier, known)) return object;
  return nullptr;
}

HRESULT ControlObject::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT ControlObject::GetTypeInfo(UINT index, LCID /*language*/, ITypeInfo** type) noexcept {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  *type = ComPointer<ITypeInfo>(types_->members).handOver();
  return S_OK;
}

HRESULT ControlObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*language*/,
                                     DISPID* numbers) noexcept {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  return types_->members->GetIDsOfNames(names, count, numbers);
}

HRESULT ControlObject::Invoke(DISPID member, REFIID reserved, LCID /*language*/, WORD flags, DISPPARAMS* arguments,
                              VARIANT* result, EXCEPINFO* failure, UINT* wrongArgument) noexcept {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (arguments == nullptr) return E_INVALIDARG;
  // Not all systems refuse arguments that no member takes.
  const std::optional<UINT> most = mostArguments(*types_->members.get(), member, flags);
  if (most && arguments->cArgs > *most) return DISP_E_BADPARAMCOUNT;
  ::SetErrorInfo(0, nullptr);
  return types_->members->Invoke(static_cast<AuditViewerInterface*>(this), member, flags, arguments, result, failure,
                                 wrongArgument);
}

// A member may let the container release the control, which must live until the member ends.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the list of members is made from their table
#define KORVEL_MEMBER(name, parameters, arguments)                                 \
  HRESULT ControlObject::name parameters noexcept {                                \
    const auto alive = ComPointer<IUnknown>::shared(outer_);                       \
    const HRESULT outcome = viewer_->name arguments;                               \
    return FAILED(outcome) ? fail(outcome, systemText(outcome).c_str()) : outcome; \
  }
#include "audit_viewer_members.inc"
#undef KORVEL_MEMBER

HRESULT ControlObject::GetClassInfo(ITypeInfo** type) noexcept {
  if (type == nullptr) return E_POINTER;
  *type = ComPointer<ITypeInfo>(types_->control).handOver();
  return S_OK;
}

HRESULT ControlObject::GetGUID(DWORD kind, GUID* identifier) noexcept {
  if (identifier == nullptr) return E_POINTER;
  *identifier = types_->eventsId;
  if (kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID) return S_OK;
  *identifier = GUID_NULL;
  return E_INVALIDARG;
}

HRESULT ControlObject::InterfaceSupportsErrorInfo(REFIID identifier) noexcept {
  return IsEqualIID(identifier, types_->membersId) ? S_OK : S_FALSE;
}

void ControlObject::databaseSelected(const wchar_t* database) noexcept {
  if (eventsAreFrozen()) return;
  [[maybe_unused]] const HRESULT result = guarded([&] {
    VARIANT text;
    text.vt = VT_BSTR;
    text.bstrVal = ::SysAllocString(database);
    raise(databaseSelectedEvent, {text});
    ::VariantClear(&text);
    return S_OK;
  });
}

void ControlObject::exitApp() noexcept {
  if (eventsAreFrozen()) return;
  [[maybe_unused]] const HRESULT result = guarded([&] {
    raise(exitAppEvent, {});
    return S_OK;
  });
}

void ControlObject::propertyChanged(const wchar_t* name) noexcept {
  [[maybe_unused]] const HRESULT result = guarded([&] {
    setDirty();
    std::wstring wanted(name);
    LPOLESTR text = wanted.data();
    DISPID number = DISPID_UNKNOWN;
    check(types_->members->GetIDsOfNames(&text, 1, &number));
    announceChange(number);
    announceView();
    return S_OK;
  });
}

void ControlObject::focusEntered() noexcept {
  [[maybe_unused]] const HRESULT result = guarded([&] {
    focusCame();
    return S_OK;
  });
}

void ControlObject::dialogOpen(bool open) noexcept {
  dialogOpened(open);
}

}  // namespace korvel::ocx
