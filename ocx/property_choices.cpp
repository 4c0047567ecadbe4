// The properties in the property windows of containers: the values that DatabaseType can have, and the page of all.
#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <string>
#include <utility>
#include <vector>

#include "ocx/allocated_text.h"
#include "ocx/control_object.h"
#include "ocx/control_status.h"
#include "ocx/enumeration_choices.h"
#include "ocx/failure.h"
#include "ocx/property_page.h"

namespace korvel::ocx {
namespace {

constexpr DISPID databaseType = 1;

/// Whether a member can be set: every property of the control is one that is stored.
bool isProperty(ITypeInfo& members, DISPID member) {
  bool found = false;
  FUNCDESC* function = nullptr;
  for (UINT index = 0; !found && SUCCEEDED(members.GetFuncDesc(index, &function)); ++index) {
    found = function->memid == member && function->invkind == INVOKE_PROPERTYPUT;
    members.ReleaseFuncDesc(function);
  }
  return found;
}

}  // namespace

HRESULT ControlObject::GetDisplayString(DISPID property, BSTR* text) noexcept {
  if (text == nullptr) return E_POINTER;
  *text = nullptr;
  if (property != databaseType) return S_FALSE;
  return guarded([&] {
    LONG current = 0;
    check(viewer_->get_DatabaseType(&current));
    for (const Choice& each : choicesOf(*types_->databaseTypes.get()))
      if (each.value == current) *text = ::SysAllocString(each.name.c_str());
    return *text != nullptr ? S_OK : S_FALSE;
  });
}

HRESULT ControlObject::MapPropertyToPage(DISPID property, CLSID* page) noexcept {
  if (page == nullptr) return E_POINTER;
  *page = CLSID_NULL;
  return guarded([&]() -> HRESULT {
    if (!isProperty(*types_->members.get(), property)) return PERPROP_E_NOPAGEAVAILABLE;
    *page = propertyPageId;
    return S_OK;
  });
}

HRESULT ControlObject::GetPages(CAUUID* pages) noexcept {
  if (pages == nullptr) return E_POINTER;
  *pages = {};
  pages->pElems = static_cast<GUID*>(::CoTaskMemAlloc(sizeof(GUID)));
  if (pages->pElems == nullptr) return E_OUTOFMEMORY;
  *pages->pElems = propertyPageId;
  pages->cElems = 1;
  return S_OK;
}

HRESULT ControlObject::openPropertyFrame(HWND owner) {
  // The window calls the control as its container may, and may outlive the container's own reference.
  const auto alive = ComPointer<IUnknown>::shared(outer_);
  IUnknown* control = alive.get();
  CLSID page = propertyPageId;
  return ::OleCreatePropertyFrame(owner, 0, 0, controlName, 1, &control, 1, &page, LOCALE_USER_DEFAULT, 0, nullptr);
}

HRESULT ControlObject::GetPredefinedStrings(DISPID property, CALPOLESTR* texts, CADWORD* values) noexcept {
  if (texts == nullptr || values == nullptr) return E_POINTER;
  *texts = {};
  *values = {};
  if (property != databaseType) return E_NOTIMPL;
  return guarded([&] {
    const std::vector<Choice> choices = choicesOf(*types_->databaseTypes.get());
    const auto count = static_cast<ULONG>(choices.size());
    texts->pElems = static_cast<LPOLESTR*>(::CoTaskMemAlloc(count * sizeof(LPOLESTR)));
    values->pElems = static_cast<DWORD*>(::CoTaskMemAlloc(count * sizeof(DWORD)));
    if (texts->pElems == nullptr || values->pElems == nullptr) {
      ::CoTaskMemFree(std::exchange(texts->pElems, nullptr));
      ::CoTaskMemFree(std::exchange(values->pElems, nullptr));
      return E_OUTOFMEMORY;
    }
    for (ULONG index = 0; index < count; ++index) {
      texts->pElems[index] = allocated(choices[index].name);
      values->pElems[index] = static_cast<DWORD>(choices[index].value);
    }
    texts->cElems = count;
    values->cElems = count;
    return S_OK;
  });
}

HRESULT ControlObject::GetPredefinedValue(DISPID property, DWORD value, VARIANT* result) noexcept {
  if (result == nullptr) return E_POINTER;
  if (property != databaseType) return E_NOTIMPL;
  result->vt = VT_I4;
  result->lVal = static_cast<LONG>(value);
  return S_OK;
}

}  // namespace korvel::ocx
