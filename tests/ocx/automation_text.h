#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

#include <string>

/// A type library as the text of the table that it was made from: one line for each type and member, six columns.
namespace korvel::test {

[[nodiscard]] std::string textOf(ITypeLib& library);

}  // namespace korvel::test
