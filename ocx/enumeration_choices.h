#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

#include <string>
#include <vector>

namespace korvel::ocx {

/// A value of an enumeration in the type library.
struct Choice {
  std::wstring name;
  LONG value = 0;
};

/// The values in their order. Throws Failure.
[[nodiscard]] std::vector<Choice> choicesOf(ITypeInfo& enumeration);

}  // namespace korvel::ocx
