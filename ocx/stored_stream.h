#pragma once

#include <windows.h>
// after windows.h
#include <objidl.h>

#include <string>
#include <vector>

#include "ocx/property_value.h"

/// The control's properties as they stand in a stream: a mark, the version of the form, the length of what follows, and
/// each property with name, type and value.
namespace korvel::ocx {

struct StreamedProperty {
  std::wstring name;
  PropertyValue value;
};

/// Writes at the stream's place. Throws Failure.
void writeProperties(IStream& stream, const std::vector<StreamedProperty>& properties);

/// Reads what writeProperties wrote. Throws Failure for a stream that ends too early, was written by a newer version of
/// the control, or holds something else.
[[nodiscard]] std::vector<StreamedProperty> readProperties(IStream& stream);

/// The most bytes that writeProperties writes for these.
[[nodiscard]] std::size_t sizeOf(const std::vector<StreamedProperty>& properties);

}  // namespace korvel::ocx
