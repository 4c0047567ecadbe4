#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

#include <memory>

#include "ocx/com_pointer.h"

namespace korvel::ocx {

/// The control's types, from the type library in its own file.
struct ControlTypes {
  ComPointer<ITypeInfo> control;
  /// As seen by whoever calls by name or number.
  ComPointer<ITypeInfo> members;
  ComPointer<ITypeInfo> databaseTypes;
  CLSID controlId{};
  IID membersId{};
  IID eventsId{};
};

/// The types, shared by all that use them at one time. Throws Failure.
[[nodiscard]] std::shared_ptr<const ControlTypes> controlTypes();

}  // namespace korvel::ocx
