// The values that DatabaseType can have, for the property windows of containers.
#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "ocx/control_object.h"
#include "ocx/failure.h"

namespace korvel::ocx {
namespace {

constexpr DISPID databaseType = 1;

struct Choice {
  std::wstring name;
  LONG value = 0;
};

std::vector<Choice> choicesOf(ITypeInfo& enumeration) {
  TYPEATTR* attributes = nullptr;
  check(enumeration.GetTypeAttr(&attributes));
  const UINT count = attributes->cVars;
  enumeration.ReleaseTypeAttr(attributes);
  std::vector<Choice> choices;
  for (UINT index = 0; index < count; ++index) {
    VARDESC* value = nullptr;
    check(enumeration.GetVarDesc(index, &value));
    BSTR name = nullptr;
    UINT found = 0;
    const HRESULT result = enumeration.GetNames(value->memid, &name, 1, &found);
    choices.push_back({std::wstring(name != nullptr ? name : L"", ::SysStringLen(name)), value->lpvarValue->lVal});
    ::SysFreeString(name);
    enumeration.ReleaseVarDesc(value);
    check(result);
  }
  return choices;
}

LPOLESTR allocated(const std::wstring& text) {
  const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  auto* copy = static_cast<LPOLESTR>(::CoTaskMemAlloc(bytes));
  if (copy != nullptr) std::memcpy(copy, text.c_str(), bytes);
  return copy;
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

HRESULT ControlObject::MapPropertyToPage(DISPID /*property*/, CLSID* page) noexcept {
  if (page == nullptr) return E_POINTER;
  *page = CLSID_NULL;
  return PERPROP_E_NOPAGEAVAILABLE;
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
