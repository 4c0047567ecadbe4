#include "ocx/enumeration_choices.h"

// after windows.h
#include <oleauto.h>

#include "ocx/failure.h"

namespace korvel::ocx {

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

}  // namespace korvel::ocx
