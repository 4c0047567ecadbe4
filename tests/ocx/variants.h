#pragma once

#include <windows.h>
// after windows.h
#include <oleauto.h>

/// Values for members and properties of the control. The caller clears them.
namespace korvel::test {

inline VARIANT text(const wchar_t* value) {
  VARIANT made{};
  made.vt = VT_BSTR;
  made.bstrVal = ::SysAllocString(value);
  return made;
}
inline VARIANT number(LONG value) {
  VARIANT made{};
  made.vt = VT_I4;
  made.lVal = value;
  return made;
}
inline VARIANT boolean(bool value) {
  VARIANT made{};
  made.vt = VT_BOOL;
  made.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return made;
}

}  // namespace korvel::test
